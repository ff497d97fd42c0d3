#pragma once

#include <string_view>

#include "kivtools/Text.h"

namespace kiv {

/// The Windows-1250 byte of a UTF-16 unit, for texts that come from elsewhere and have to be shown whatever they hold:
/// what the code page lacks becomes "?", the comma-below letters count as their cedilla forms.
/// Example: U+021B gives 0xFE, U+4E2D gives "?".
inline char ShownByte(char16_t unit) noexcept {
  return static_cast<char>(windows1250::FromUnicode(windows1250::CedillaForm(unit)).value_or('?'));
}

/// The same for a whole text, in whatever type the system holds its UTF-16 units.
template <class Unit>
Text ShownText(std::basic_string_view<Unit> units) {
  static_assert(sizeof(Unit) == sizeof(char16_t));
  Text text;
  text.reserve(units.size());
  for (const Unit unit : units) {
    text.push_back(ShownByte(static_cast<char16_t>(unit)));
  }
  return text;
}

}  // namespace kiv
