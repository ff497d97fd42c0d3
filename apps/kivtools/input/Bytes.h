#pragma once

#include <algorithm>
#include <concepts>
#include <string_view>

namespace kivtools {

/// Whether the text has one of the characters. There is no way out of the loop, so that many bytes are looked at
/// together: this is asked of every line of a file, and the answer is nearly always no.
/// Example: `HasAny("a-b", ' ', '-')` is true.
template <std::same_as<char>... Characters>
bool HasAny(std::string_view text, Characters... wanted) noexcept {
  unsigned char least = 0xFF;
  for (const char byte : text) {
    ((least = std::min(least, static_cast<unsigned char>(byte ^ wanted))), ...);
  }
  return least == 0;
}

}  // namespace kivtools
