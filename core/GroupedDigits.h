#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Digits in groups of three, written backwards as the groups come out of the divisions.
namespace kiv {

/// ".000" to ".999": a group of three digits with the dot before it.
inline constexpr auto kDottedGroups = [] {
  std::array<std::array<char, 4>, 1000> groups{};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    groups[i] = {'.', static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                 static_cast<char>('0' + i % 10)};
  }
  return groups;
}();

/// The room that WriteGroupedBefore needs before its end: 20 digits, six dots, and one dot that it may write too many.
inline constexpr std::size_t kGroupedRoom = 28;

/// Writes `value` with "." between groups of three digits so that it ends before `end`; returns its first character.
/// Example: 1234567 gives "1.234.567".
inline char* WriteGroupedBefore(char* end, std::uint64_t value) noexcept {
  const auto put = [&end](std::uint32_t belowThousand) {
    std::memcpy(end - 4, kDottedGroups[belowThousand].data(), 4);
  };
  for (; value >= 1000; value /= 1000, end -= 4) {
    put(static_cast<std::uint32_t>(value % 1000));
  }
  // The group is written whole and begins at its first digit: no branch that depends on the length.
  put(static_cast<std::uint32_t>(value));
  return end - 1 - (value >= 10 ? 1 : 0) - (value >= 100 ? 1 : 0);
}

/// Writes the last four digits of `value`, zeros in front. Example: 56 gives "0056".
inline void WriteFourDigits(char* begin, std::uint32_t value) noexcept {
  std::memcpy(begin, kDottedGroups[value % 1000].data(), 4);
  *begin = static_cast<char>('0' + value / 1000 % 10);
}

}  // namespace kiv
