#pragma once

#include "kivtools/Windows1250.h"

namespace kiv {

/// The Windows-1250 byte of a UTF-16 unit, for texts that come from elsewhere and have to be shown whatever they hold:
/// "?" stands for what the code page lacks, the comma-below letters count as their cedilla forms.
/// Example: U+021B gives 0xFE, U+4E2D gives "?".
inline char ShownByte(char16_t unit) noexcept {
  return static_cast<char>(windows1250::FromUnicode(windows1250::CedillaForm(unit)).value_or('?'));
}

}  // namespace kiv
