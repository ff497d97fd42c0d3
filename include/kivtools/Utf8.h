/// @file
/// Decoding of UTF-8, usable at compile time. It exists for the text literal and the conversions at the library's edge.
#pragma once

#include <cstddef>
#include <string_view>

namespace kiv::utf8 {

/// One decoded character: its code point and the bytes it took. `length` 0 means malformed input.
struct Decoded {
  char32_t character = 0;
  std::size_t length = 0;
};

/// Decodes the character that starts at `position` (0-based, within the text). Overlong forms, surrogates, values above
/// U+10FFFF and cut sequences are malformed.
/// Example: `DecodeAt("\xC5\x9F", 0)` gives U+015F and length 2.
[[nodiscard]] constexpr Decoded DecodeAt(std::string_view text, std::size_t position) noexcept {
  const auto byteAt = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned char lead = byteAt(position);
  if (lead < 0x80) {
    return {lead, 1};
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || length > text.size() - position) {
    return {};
  }
  char32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char next = byteAt(position + i);
    if ((next & 0xC0U) != 0x80) {
      return {};
    }
    character = (character << 6U) | (next & 0x3FU);
  }
  const char32_t smallest = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
  if (character < smallest || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
    return {};
  }
  return {character, length};
}

}  // namespace kiv::utf8
