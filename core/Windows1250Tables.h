#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/Windows1250BestFit.h"
#include "kivtools/Windows1250.h"

/// Windows-1250 as the tables that the bulk conversions read, built from the one in the public header.
namespace kiv::windows1250 {

/// The character of each byte.
inline constexpr std::array<char16_t, 256> kUnitOfByte = [] {
  std::array<char16_t, 256> units{};
  for (std::size_t byte = 0; byte < units.size(); ++byte) {
    units[byte] = ToUnicode(static_cast<unsigned char>(byte));
  }
  return units;
}();

/// The nearest byte of every UTF-16 unit, in blocks of 256 units that begin with a multiple of 256.
class NearestBytes {
 public:
  constexpr NearestBytes() {
    bytes_.fill('?');
    for (const detail::Pair& pair : kBestFit) {
      Set(pair.character, pair.byte);
    }
    for (std::size_t byte = 0; byte < kUnitOfByte.size(); ++byte) {
      Set(kUnitOfByte[byte], byte);
    }
  }

  constexpr std::uint8_t operator[](char16_t unit) const noexcept {
    return bytes_[startOfBlock_[unit / kBlock] + unit % kBlock];
  }

 private:
  static constexpr std::size_t kBlock = 256;
  static constexpr std::size_t kBlocks = 17;  // one that is all "?", for most of the units, and 16 that hold letters

  constexpr void Set(char16_t unit, std::size_t byte) {
    std::uint16_t& start = startOfBlock_[unit / kBlock];
    if (start == 0) {
      start = static_cast<std::uint16_t>(kBlock * ++used_);  // a constant expression must not run out of blocks
    }
    bytes_[start + unit % kBlock] = static_cast<std::uint8_t>(byte);
  }

  std::size_t used_ = 0;
  std::array<std::uint16_t, 256> startOfBlock_{};
  std::array<std::uint8_t, kBlock * kBlocks> bytes_{};
};
inline constexpr NearestBytes kNearestByte;

/// The UTF-8 form of one byte.
struct Utf8Form {
  std::array<std::uint8_t, 3> bytes;
  std::uint8_t length;
};
using Utf8Table = std::array<Utf8Form, 256>;

constexpr Utf8Table MakeUtf8Table(bool commaBelow) {
  const auto continuation = [](char32_t bits) { return static_cast<std::uint8_t>(0x80U | (bits & 0x3FU)); };
  Utf8Table table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    const char32_t character = commaBelow ? CommaBelowForm(kUnitOfByte[byte]) : kUnitOfByte[byte];
    if (character < 0x80) {
      table[byte] = {{static_cast<std::uint8_t>(character)}, 1};
    } else if (character < 0x800) {
      table[byte] = {{static_cast<std::uint8_t>(0xC0U | character >> 6U), continuation(character)}, 2};
    } else {
      table[byte] = {
          {static_cast<std::uint8_t>(0xE0U | character >> 12U), continuation(character >> 6U), continuation(character)},
          3};
    }
  }
  return table;
}
inline constexpr Utf8Table kUtf8Cedilla = MakeUtf8Table(false);
inline constexpr Utf8Table kUtf8CommaBelow = MakeUtf8Table(true);

/// The byte of a character of two UTF-8 bytes, by the low six bits of its lead and of its continuation byte; 0 for one
/// that the code page lacks. The comma-below letters are there.
inline constexpr std::array<std::uint8_t, 4096> kByteOfUtf8Pair = [] {
  std::array<std::uint8_t, 4096> bytes{};
  for (std::size_t byte = 0; byte < kUtf8Cedilla.size(); ++byte) {
    for (const Utf8Form& utf8 : {kUtf8Cedilla[byte], kUtf8CommaBelow[byte]}) {
      if (utf8.length == 2) {
        bytes[(utf8.bytes[0] & 0x3FU) << 6U | (utf8.bytes[1] & 0x3FU)] = static_cast<std::uint8_t>(byte);
      }
    }
  }
  return bytes;
}();

}  // namespace kiv::windows1250
