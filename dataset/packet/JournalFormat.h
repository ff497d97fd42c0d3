#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "dataset/store/EditRecorder.h"

/// The log of a journal. Little-endian.
///
///     header   magic, version, identity of the packet whose edits follow, checksum: 28 bytes
///     entry    length of the payload, payload, checksum
///
/// The CRC-32C of an entry goes on from that of what is before it, so that no entry can stand in another's place. A
/// payload is the kind of the edit and its number; of a row the count of fields, and for each its number, top bit set
/// for null, and unless null 8 bytes (of a Guid 16), or the length of a text and the text. Rows have the numbers that
/// they get when the packet is loaded.
namespace kiv::packet {

inline constexpr std::array<std::uint8_t, 8> kJournalMagic = {0x89, 'K', 'D', 'J', '\r', '\n', 0x1A, '\n'};
inline constexpr std::uint64_t kJournalVersion = 1;
inline constexpr std::size_t kJournalHeaderSize = 28;
inline constexpr std::uint16_t kNullInEntry = 0x8000;

/// The header for the edits of that packet.
std::array<std::byte, kJournalHeaderSize> JournalHeader(std::uint64_t identity) noexcept;

/// The name of the log beside that file. Example: "linii.kdp.log".
std::filesystem::path JournalPath(const std::filesystem::path& path);

}  // namespace kiv::packet
