/// @file
/// Small general helpers: splitting, a textual hash, rounding that settles halves upward, defaults for absent values,
/// and three questions to the system.
///
/// All operations but the last three are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The pieces between separators, at most `limit` of them and at least one; the last holds the unsplit rest, separators
/// included. `separators` is a set of characters, each of which separates by itself. Separators in a row give empty
/// pieces, an empty text gives one empty piece, a limit of 1 or less the whole text. Takes linear time.
///
///     Explode(",;", "a,b;;c", 10)   // "a", "b", "", "c"
///     Explode(",", "a,b,,c", 2)     // "a", "b,,c"
KIV_API StringList Explode(TextView separators, TextView text, std::int32_t limit);

/// Appends the pieces between separators to a list, which is not cleared first; empty pieces are left out. `separators`
/// is a set of characters. Takes linear time. If it throws for want of memory, the list holds what it held before.
///
///     SplitTextOnSeparator("a,b,,c", ",", list);   // appends "a", "b", "c"
KIV_API void SplitTextOnSeparator(TextView text, TextView separators, StringList& list);

/// A short hash of a text as a decimal number from 0 to 1073741823: the character at position i, from 1, is shifted
/// left by i modulo 23 bits, and all are combined by exclusive or. Not for security. Never throws but for memory.
///
///     StringHash("A")   // "130"
KIV_API Text StringHash(TextView text);

/// The path with every run of backslashes shrunk to one, the first two characters set aside as they are, so that a
/// network path keeps its leading pair. It cleans text: backslashes are meant on every system.
///
///     RemoveDualSlshPath(R"(\\srv\\dir\\\file)")   // \\srv\dir\file
KIV_API Text RemoveDualSlshPath(TextView path);

/// The nearest integer after adding 1e-11, so that exact halves go up. The sum is formed with 64 bits of mantissa, and
/// neither the caller's rounding mode nor the processor's precision setting changes the result; the rounding mode is
/// to-nearest afterwards, on purpose. Throws Error for what is no number and for a result outside the signed 64-bit
/// range.
///
///     SmartRound(2.5)    // 3
///     SmartRound(-2.5)   // -2
KIV_API double SmartRound(double value);

/// The nearest multiple of 10^digit after adding 1e-11: digit -2 rounds to hundredths, 0 to units, 2 to hundreds. The
/// result is the double nearest to that decimal number. Precision, rounding mode and errors are those of SmartRound;
/// the range counts for the number of multiples.
///
///     SmartRoundTo(0.125, -2)   // 0.13
KIV_API double SmartRoundTo(double value, std::int8_t digit);

/// The quarter of a month, 1 to 4; -1 for what is no month from 1 to 12. Example: `TrimestruLuna(4)` is 2.
KIV_API std::int32_t TrimestruLuna(std::int32_t month);

/// A variant as a date and time, `defaultValue` for Null. Numbers and amounts count days, true is -1; a Text must be a
/// plain decimal number, with a point before decimals. Throws ConversionError for any other Text.
///
///     VarToDateDef(Null{}, DateTime(1))     // DateTime(1)
///     VarToDateDef(Text("45356.5"), {})     // 5 March 2024, 12:00
KIV_API DateTime VarToDateDef(const Variant& value, DateTime defaultValue);

/// A variant as an integer, `defaultValue` for Null. Fractions round to the nearest, halves to even; true is -1; a Text
/// must be a plain decimal number. Throws ConversionError for any other Text and for a value outside 32 bits.
///
///     VarToIntDef(Null{}, 7)          // 7
///     VarToIntDef(2.5, 0)             // 2
///     VarToIntDef(Text(" -12"), 0)    // -12
KIV_API std::int32_t VarToIntDef(const Variant& value, std::int32_t defaultValue);

/// The larger of two integers. Example: `MaxInt(2, 3)` is 3.
constexpr std::int32_t MaxInt(std::int32_t a, std::int32_t b) noexcept {
  return a < b ? b : a;
}

/// The smaller of two integers. Example: `MinInt(2, 3)` is 2.
constexpr std::int32_t MinInt(std::int32_t a, std::int32_t b) noexcept {
  return a < b ? a : b;
}

/// The user's name: on Windows that of the current logon, on POSIX that of the process's effective user in the password
/// database. Empty where the system has none; letters that Windows-1250 lacks are "?". Example: "ana".
KIV_API Text LogOnUserName();

/// Whether the operating system's major version number is 6 or more: on Windows true from Vista on; on POSIX it is the
/// kernel's number that counts. Example: true on Windows 10 and on Linux 6.1.
KIV_API bool EsteWindowsVista();

/// Puts a text on the clipboard of the installed host, replacing its content. On Windows that is the system's
/// clipboard; without a window system the text stays in the process. Throws OsError where the clipboard cannot be
/// opened.
///
///     CopiazaTextInClipboard("ţară"_ro);   // other programs can paste "ţară"
KIV_API void CopiazaTextInClipboard(TextView text);

}  // namespace kiv
