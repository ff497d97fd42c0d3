/// @file
/// The Windows-1250 code page as a compile-time table. Bytes 0x00 to 0x7F are ASCII; every byte has a character, so
/// every byte string converts to Unicode and back unchanged.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace kiv::windows1250 {

/// The Unicode characters of bytes 0x80 to 0xFF. The five bytes without a letter (0x81, 0x83, 0x88, 0x90, 0x98) stand
/// for the control characters of the same number.
inline constexpr std::array<char16_t, 128> kUpperHalf = {
    0x20AC, 0x0081, 0x201A, 0x0083, 0x201E, 0x2026, 0x2020, 0x2021, 0x0088, 0x2030, 0x0160, 0x2039, 0x015A,
    0x0164, 0x017D, 0x0179, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B, 0x00B0, 0x00B1, 0x02DB, 0x0142,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C, 0x0154,
    0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD,
    0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA,
    0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4,
    0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

/// The character of one byte. Example: `ToUnicode(0xAA)` is U+015E (S with cedilla).
[[nodiscard]] constexpr char16_t ToUnicode(unsigned char byte) noexcept {
  return byte < 0x80 ? static_cast<char16_t>(byte) : kUpperHalf[byte - 0x80U];
}

namespace detail {

struct Pair {
  char16_t character;
  unsigned char byte;
};

consteval std::array<Pair, 128> SortedUpperHalf() {
  std::array<Pair, 128> pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    pairs[i] = {kUpperHalf[i], static_cast<unsigned char>(0x80 + i)};
  }
  std::sort(pairs.begin(), pairs.end(), [](Pair a, Pair b) { return a.character < b.character; });
  return pairs;
}

inline constexpr std::array<Pair, 128> kByCharacter = SortedUpperHalf();

}  // namespace detail

/// The byte of one character, nothing where the code page lacks it. Comma-below letters are not in the code page.
/// Example: `FromUnicode(U'\u015E')` is 0xAA; `FromUnicode(U'\u0218')` is empty.
[[nodiscard]] constexpr std::optional<unsigned char> FromUnicode(char32_t character) noexcept {
  if (character < 0x80) {
    return static_cast<unsigned char>(character);
  }
  const auto* const found =
      std::lower_bound(detail::kByCharacter.begin(), detail::kByCharacter.end(), character,
                       [](detail::Pair pair, char32_t wanted) { return pair.character < wanted; });
  if (found == detail::kByCharacter.end() || found->character != character) {
    return std::nullopt;
  }
  return found->byte;
}

/// The cedilla letter that Windows-1250 uses where today's Romanian writes a comma below; other characters unchanged.
/// Example: `CedillaForm(U'\u021B')` is U+0163.
[[nodiscard]] constexpr char32_t CedillaForm(char32_t character) noexcept {
  switch (character) {
    case U'\u0218':
      return U'\u015E';
    case U'\u0219':
      return U'\u015F';
    case U'\u021A':
      return U'\u0162';
    case U'\u021B':
      return U'\u0163';
    default:
      return character;
  }
}

/// The reverse of CedillaForm. Example: `CommaBelowForm(U'\u0163')` is U+021B.
[[nodiscard]] constexpr char32_t CommaBelowForm(char32_t character) noexcept {
  switch (character) {
    case U'\u015E':
      return U'\u0218';
    case U'\u015F':
      return U'\u0219';
    case U'\u0162':
      return U'\u021A';
    case U'\u0163':
      return U'\u021B';
    default:
      return character;
  }
}

}  // namespace kiv::windows1250
