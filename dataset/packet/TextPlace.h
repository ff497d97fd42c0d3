#pragma once

#include <cstdint>
#include <string_view>

#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Where in a packet of text something is.
struct TextPlace {
  std::uint64_t line = 1;
  std::uint64_t column = 0;  ///< 0 where it does not matter
  std::uint64_t offset = 0;
};

/// Throws TextPacketError. `operation` begins the message, with the file's name if there is one.
[[noreturn]] void RefuseText(const Text& operation, const TextPlace& place, TextView why);

/// UTF-8 as Windows-1250 whatever it holds: "?" for letters that it lacks.
Text ShownUtf8(std::string_view utf8);

/// A piece of a packet for a message: in quotes, as ShownUtf8, the front of a long one.
Text ShownPiece(std::string_view utf8);

}  // namespace kiv::packet
