#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kivtools {

/// What people and spreadsheets put where nothing is to be seen: the blank, and the two at which no line is broken.
inline constexpr std::array<std::string_view, 3> kBlanks = {" ", "\u00A0", "\u202F"};

/// The length of the blank that the text begins with; 0 where it begins with none.
constexpr std::size_t BlankAtBegin(std::string_view text) noexcept {
  const auto* const found = std::ranges::find_if(kBlanks, [text](auto blank) { return text.starts_with(blank); });
  return found == kBlanks.end() ? 0 : found->size();
}

/// The text without the blanks around it. Example: `Trimmed(" 1,5 ")` is "1,5".
constexpr std::string_view Trimmed(std::string_view text) noexcept {
  while (const std::size_t length = BlankAtBegin(text)) {
    text.remove_prefix(length);
  }
  const auto isLast = [&text](std::string_view blank) { return text.ends_with(blank); };
  for (const auto* last = kBlanks.begin(); (last = std::ranges::find_if(kBlanks, isLast)) != kBlanks.end();) {
    text.remove_suffix(last->size());
  }
  return text;
}

}  // namespace kivtools
