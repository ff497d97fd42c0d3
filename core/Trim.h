#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// Whether trimming removes the character: blanks and control characters, codes up to 32.
constexpr bool IsTrimmed(char character) noexcept {
  return static_cast<unsigned char>(character) <= ' ';
}

/// The text without blanks and control characters at both ends. Example: `Trim(" a b\r\n")` is "a b".
constexpr TextView Trim(TextView text) noexcept {
  while (!text.empty() && IsTrimmed(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsTrimmed(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace kiv
