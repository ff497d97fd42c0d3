/// @file
/// Dates and times as Romanian text, each form a function of its own, and one form read back. Day, month and year are
/// those of the moment rounded to the millisecond.
///
/// The writing operations are pure: they need no Initialize() and may be called from any thread. They throw
/// DateEncodingError for a moment outside the years 1 to 9999. The examples are for Tuesday 5 March 2024, 14:07:09.
#pragma once

#include <array>
#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The months' names, January first: "Ianuarie" to "Decembrie". Valid from load until Finalize() releases them;
/// Initialize() fills them anew. Example: `NumeLuna[2]` is "Martie".
extern KIV_API std::array<Text, 12> NumeLuna;

/// The months' short names, January first: "ian" to "dec", November being "nov". Same life as NumeLuna.
/// Example: `NumeLunaScurt[10]` is "nov".
extern KIV_API std::array<Text, 12> NumeLunaScurt;

/// How to write the month.
enum TCumScriuLuna : std::int32_t {
  scriu_1_cifre_luna = 0,   ///< without a leading zero
  scriu_2_cifre_luna = 1,   ///< in two digits
  scriu_3_litere_luna = 2,  ///< in three letters
  scriu_nume_luna = 3,      ///< the whole name
};

/// Day, month in letters, year. Example: "5 martie 2024".
[[nodiscard]] KIV_API Text DateToRoText(DateTime date);
/// Day, month in letters. Example: "5 martie".
[[nodiscard]] KIV_API Text DateToRoText2(DateTime date);
/// Month in letters, year. Example: "martie 2024".
[[nodiscard]] KIV_API Text DateToRoText3(DateTime date);
/// Day in two digits, month in three letters (November is "noi"), year. Example: "05 mar 2024".
[[nodiscard]] KIV_API Text DateToRoText4(DateTime date);
/// Day and weekday. Example: "5 (Marti)".
[[nodiscard]] KIV_API Text DateToRoText5(DateTime date);
/// Day, month in letters and weekday. Example: "5 martie (Marti)".
[[nodiscard]] KIV_API Text DateToRoText6(DateTime date);
/// Day without a leading zero, month in two digits, year. Example: "5.03.2024".
[[nodiscard]] KIV_API Text DateToRoText7(DateTime date);
/// Day and month in two digits, year in four. Example: "05.03.2024".
[[nodiscard]] KIV_API Text DateToRoCode(DateTime date);
/// Day and month in two digits. Example: "05/03".
[[nodiscard]] KIV_API Text DateToRoTextScurt(DateTime date);
/// Day, month and the third and fourth characters of the year; a year of fewer than four digits shows "?" for those
/// that it lacks. Example: "05/03/24".
[[nodiscard]] KIV_API Text DateToRoTextScurtCuAn(DateTime date);
/// DateToRoTextScurtCuAn and the time of day. Example: "05/03/24 14:07:09".
[[nodiscard]] KIV_API Text DateToRoTextScurtCuAnPlusOra(DateTime date);
/// The weekday. Example: "Marti".
[[nodiscard]] KIV_API Text NumeZiDinSaptamana(DateTime date);
/// Time of day, the hour without a leading zero. Example: "14:07:09"; five past nine gives "9:05:00".
[[nodiscard]] KIV_API Text TimeToStrRoFrumos(DateTime time);
/// Time of day without its zero parts, minutes marked "m" where no hour comes before them.
/// Example: "14h 7' 9''"; without the hour "7m 9''"; midnight gives "".
[[nodiscard]] KIV_API Text TimeToStrRo(DateTime time);
/// Time of day in words. Example: "Ora 14 07 minute 09 sec".
[[nodiscard]] KIV_API Text TimeToStrRo2(DateTime time);

/// Reads day, month and year between dots; blanks separate too, and an item may be in double quotes. Surplus
/// items are ignored. Throws ConversionError for a missing item or one that is no whole number, DateEncodingError for a
/// date that the calendar lacks.
///
///     RoCodeToDate("05.03.2024")   // 5 March 2024, 00:00
[[nodiscard]] KIV_API DateTime RoCodeToDate(TextView text);

/// Always the empty Text, whatever its arguments: hosts bound to it keep working. Never throws.
/// Example: `DateToRoText_WithCode(DateTime(), true, true, scriu_nume_luna, true)` is "".
[[nodiscard]] KIV_API Text DateToRoText_WithCode(DateTime date, bool first, bool second, TCumScriuLuna month,
                                                 bool third);

}  // namespace kiv
