#pragma once

#include <array>
#include <cstdint>

#include "kivtools/DateTime.h"

namespace kiv {

inline constexpr std::int32_t kMillisecondsPerDay = 86'400'000;
/// The day numbers of 1 January of the year 1 and of 31 December 9999.
inline constexpr std::int32_t kFirstDayNumber = -693'593;
inline constexpr std::int32_t kLastDayNumber = 2'958'465;

/// The milliseconds since 30 December 1899, 00:00, rounded to the nearest, halves up. Throws DateEncodingError for a
/// moment outside the years 1 to 9999 and for not-a-number. Example: `MillisecondsOf(DateTime(-1.25))` is -64800000.
std::int64_t MillisecondsOf(DateTime moment);

/// The moment of a count that MillisecondsOf gives. Example: `MomentOf(-64800000)` is -1.25.
DateTime MomentOf(std::int64_t milliseconds) noexcept;

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
