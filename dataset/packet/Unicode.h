#pragma once

#include <string>
#include <string_view>

#include "kivtools/Utf8.h"

/// UTF-16 and UTF-8 into each other, exactly.
namespace kiv {

/// Whether a character may be in XML at all.
constexpr bool IsAllowedInXml(char32_t character) noexcept {
  return character >= 0x20 ? character != 0xFFFE && character != 0xFFFF && (character < 0xD800 || character > 0xDFFF) &&
                                 character <= 0x10FFFF
                           : character == '\t' || character == '\n' || character == '\r';
}

/// Appends a character as UTF-8.
inline void AppendUtf8(std::string& utf8, char32_t character) {
  const auto follow = [&](unsigned shift) { utf8 += static_cast<char>(0x80U | (character >> shift & 0x3FU)); };
  if (character < 0x80) {
    utf8 += static_cast<char>(character);
  } else if (character < 0x800) {
    utf8 += static_cast<char>(0xC0U | character >> 6U);
    follow(0);
  } else if (character < 0x10000) {
    utf8 += static_cast<char>(0xE0U | character >> 12U);
    follow(6);
    follow(0);
  } else {
    utf8 += static_cast<char>(0xF0U | character >> 18U);
    follow(12);
    follow(6);
    follow(0);
  }
}

/// Appends UTF-16 whose pairs are whole, as a field holds it.
inline void AppendUtf8(std::string& utf8, std::u16string_view wide) {
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t character = wide[i];
    if ((character & 0xFC00U) == 0xD800U && i + 1 < wide.size()) {
      character = 0x10000U + ((character & 0x3FFU) << 10U) + (char32_t{wide[++i]} & 0x3FFU);
    }
    AppendUtf8(utf8, character);
  }
}

/// Appends a character as UTF-16.
inline void AppendUtf16(std::u16string& wide, char32_t character) {
  if (character < 0x10000) {
    wide += static_cast<char16_t>(character);
  } else {
    wide += static_cast<char16_t>(0xD7C0U + (character >> 10U));
    wide += static_cast<char16_t>(0xDC00U | (character & 0x3FFU));
  }
}

/// Appends UTF-8 as UTF-16; false where it is malformed.
inline bool AppendUtf16(std::u16string& wide, std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const utf8::Decoded decoded = utf8::DecodeAt(utf8, at);
    if (decoded.length == 0) {
      return false;
    }
    AppendUtf16(wide, decoded.character);
    at += decoded.length;
  }
  return true;
}

}  // namespace kiv
