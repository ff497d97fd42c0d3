/// @file
/// DateTime: a moment of the proleptic Gregorian calendar, without time zone.
#pragma once

#include <compare>

#include "kivtools/Export.h"

namespace kiv {

/// Days since 30 December 1899, 00:00; the fraction is the time of day. Before that day the date is the value cut
/// toward zero and the time of day is the absolute value of the fraction: -1.25 is 29 December 1899, 06:00.
///
///     DateTime::Encode(2024, 3, 5, 12).Days()   // 45356.5
class DateTime {
 public:
  /// 30 December 1899, 00:00.
  constexpr DateTime() = default;
  /// The moment with that day number; any double is accepted here, Decode() judges it.
  constexpr explicit DateTime(double days) noexcept : days_(days) {}

  /// The day number.
  [[nodiscard]] constexpr double Days() const noexcept { return days_; }

  /// A moment taken apart. Month 1 to 12, hour 0 to 23, millisecond 0 to 999, dayOfWeek 1 = Sunday to 7 = Saturday.
  struct Parts {
    int year, month, day, hour, minute, second, millisecond, dayOfWeek;
  };

  /// Builds a moment. Years 1 to 9999, hours 0 to 23, minutes and seconds 0 to 59, milliseconds 0 to 999. Throws
  /// DateEncodingError, naming the values, for what the calendar or the clock does not have.
  ///
  ///     DateTime::Encode(1899, 12, 29, 6).Days()   // -1.25
  [[nodiscard]] KIV_API static DateTime Encode(int year, int month, int day, int hour = 0, int minute = 0,
                                               int second = 0, int millisecond = 0);

  /// Takes the moment apart, rounded to the nearest millisecond (halves up), carrying into the next day. Throws
  /// DateEncodingError for a moment outside the years 1 to 9999 and for not-a-number.
  ///
  ///     DateTime(45356.5).Decode()   // 2024, 3, 5, 12, 0, 0, 0, 3 (Tuesday)
  [[nodiscard]] KIV_API Parts Decode() const;

  friend constexpr auto operator<=>(DateTime, DateTime) = default;

 private:
  double days_ = 0;
};

}  // namespace kiv
