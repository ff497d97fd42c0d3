#pragma once

/// The letters of Windows-1250, of all languages that it serves.
namespace kiv {

/// The lower-case form of an upper-case letter of Windows-1250, other bytes as they are.
constexpr unsigned char LowerCase(unsigned char byte) noexcept {
  if ((byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7)) {
    return static_cast<unsigned char>(byte + 0x20);
  }
  switch (byte) {
    case 0x8A:
    case 0x8C:
    case 0x8D:
    case 0x8E:
    case 0x8F:
    case 0xA3:
    case 0xAA:
    case 0xAF:
      return static_cast<unsigned char>(byte + 0x10);
    case 0xA5:
      return 0xB9;
    case 0xBC:
      return 0xBE;
    default:
      return byte;
  }
}

/// Whether the byte is a letter.
constexpr bool IsLetter(unsigned char byte) noexcept {
  switch (LowerCase(byte)) {
    case 0x9A:
    case 0x9C:
    case 0x9D:
    case 0x9E:
    case 0x9F:
    case 0xB3:
    case 0xB9:
    case 0xBA:
    case 0xBE:
    case 0xBF:
    case 0xDF:
      return true;
    case 0xD7:
    case 0xF7:
    case 0xFF:
      return false;
    default:
      return (LowerCase(byte) >= 'a' && LowerCase(byte) <= 'z') || LowerCase(byte) >= 0xE0;
  }
}

namespace detail {

struct UpperCases {
  unsigned char of[256];
};

inline constexpr UpperCases kUpperCases = [] {
  UpperCases upper{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    upper.of[byte] = static_cast<unsigned char>(byte);
  }
  for (unsigned byte = 0; byte < 256; ++byte) {
    if (const unsigned lower = LowerCase(static_cast<unsigned char>(byte)); lower != byte) {
      upper.of[lower] = static_cast<unsigned char>(byte);
    }
  }
  return upper;
}();

}  // namespace detail

/// The upper-case form of a lower-case letter, other bytes as they are; a sharp s has none.
constexpr unsigned char UpperCase(unsigned char byte) noexcept {
  return detail::kUpperCases.of[byte];
}

}  // namespace kiv
