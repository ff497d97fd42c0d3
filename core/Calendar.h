#pragma once

#include <array>

namespace kiv {

/// Whether the Gregorian calendar, carried on to any year, gives this one a 29 February.
constexpr bool IsLeapYear(int year) noexcept {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// The number of days of a month from 1 to 12; 0 for any other month. Example: `DaysInMonth(2024, 2)` is 29.
constexpr int DaysInMonth(int year, int month) noexcept {
  constexpr std::array<signed char, 13> kDays = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) {
    return 0;
  }
  return month == 2 && IsLeapYear(year) ? 29 : kDays[static_cast<unsigned>(month)];
}

}  // namespace kiv
