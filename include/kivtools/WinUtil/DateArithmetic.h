/// @file
/// Small calculations on dates and durations, and the smart date string, a sortable key of date and time.
///
/// All operations are synchronous and keep no state; any thread may call them.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The date moved by whole months, at 00:00:00: the time of day is dropped. A day that the new month does not have
/// becomes its last one. Throws DateEncodingError for a result outside the years 1 to 9999.
///
///     IncMonth(DateTime::Encode(2024, 1, 31, 10, 30), 1)    // 29 February 2024, 00:00
///     IncMonth(DateTime::Encode(2024, 1, 31), -1)           // 31 December 2023
[[nodiscard]] KIV_API DateTime IncMonth(DateTime date, std::int32_t months);

/// The date with another day of the month, at 00:00:00. A day that is one too many becomes the last one; only this one
/// step back is tried. Throws Error "Nu pot re-codifica data" for any other day that the month does not have.
///
///     SetDayOfDate(DateTime::Encode(2024, 4, 5), 31)   // 30 April 2024
///     SetDayOfDate(DateTime::Encode(2023, 2, 5), 30)   // throws
[[nodiscard]] KIV_API DateTime SetDayOfDate(DateTime date, std::int32_t day);

/// Does nothing: a library does not change the user's date format. It is kept because hosts call it.
/// Example: `SetShortDateFormat("dd.MM.yyyy")` changes nothing.
KIV_API void SetShortDateFormat(TextView format);

/// How long a job takes in all and how long it still takes, for a progress display: the time since `start` is taken to
/// have done `doneCount` of `totalCount` parts. With nothing done, the total is the time since `start`. Never throws.
///
///     // start 10:00, now 10:30, 25 of 100 done
///     CalcDurataTotala(start, now, 100, 25, total, remaining);   // total 2 hours, remaining 1 hour 30 minutes
KIV_API void CalcDurataTotala(DateTime start, DateTime now, std::int32_t totalCount, std::int32_t doneCount,
                              DateTime& total, DateTime& remaining);

/// The same as times of day in the user's long time format ("14:07:09" where the system has none). Whole days are not
/// shown, nor is the sign of a negative time. Throws DateEncodingError where `start` or `now` is not a number; the
/// results are then untouched.
///
///     CalcDurataTotala(start, now, 100, 25, total, remaining);   // total "02:00:00", remaining "01:30:00"
KIV_API void CalcDurataTotala(DateTime start, DateTime now, std::int32_t totalCount, std::int32_t doneCount,
                              Text& total, Text& remaining);

/// The time of day with its milliseconds, all joined by ":". Whole days are not shown. Throws DateEncodingError for
/// what is not a number.
///
///     TimeToStrDurataMS(DateTime::Encode(2024, 3, 5, 14, 7, 9, 250))   // "14:07:09:250"
[[nodiscard]] KIV_API Text TimeToStrDurataMS(DateTime time);

/// The smart date string: year, month + 13 * day and seconds since midnight modulo 65536, in 4, 3 and 5 digits joined
/// by
/// ":". From 18:12:16 on the seconds have wrapped, so the strings of one day sort by time only before that. Throws
/// DateEncodingError outside the years 1 to 9999.
///
///     DateTimeToSmartStrimg(DateTime::Encode(2024, 3, 5, 14, 7, 9))    // "2024:068:50829"
///     DateTimeToSmartStrimg(DateTime::Encode(2024, 3, 5, 23))          // "2024:068:17264"
[[nodiscard]] KIV_API Text DateTimeToSmartStrimg(DateTime moment);

/// Reads a smart date string. The date comes back exactly; of the times only those before 01:00:00 surely do, because
/// the hours are the minutes since midnight divided by 69. What is between the fields and after them is not looked
/// at. Throws ConversionError where a field is not a number, and DateEncodingError for a date that the calendar lacks.
///
///     SmartStringToDateTime("2024:068:50829")   // 5 March 2024, 12:07:09
///     SmartStringToDateTime("2024:068:04139")   // 5 March 2024, 00:08:59
[[nodiscard]] KIV_API DateTime SmartStringToDateTime(TextView text);

}  // namespace kiv
