/// @file
/// The personal numeric code: 13 digits for sex and century, birth date (YYMMDD), county, number and control digit.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"
#include "kivtools/WinUtil/CodeFaults.h"

namespace kiv {

/// Whether the code is valid: 13 digits and nothing else (no blanks, no "RO"), the first one 1, 2, 5 or 6, a birth date
/// that the calendar has, and the right control digit. For the date alone, YY below 05 is taken as 20YY and the rest as
/// 19YY whatever the first digit says. Never throws, for any bytes; no memory is allocated. Any thread may call it.
///
///     TestCNP("1800101221144")   // true
///     TestCNP("1800101221145")   // false: wrong control digit
///     TestCNP("3800101221143")   // false: 3, 4, 7, 8, 9 and 0 are not accepted in front
[[nodiscard]] KIV_API bool TestCNP(TextView code) noexcept;

/// The first rule that the code breaks, in the order: length, digits, first digit, birth date, control digit. Its rule
/// is CodeRule::None exactly where TestCNP() says yes. Never throws, allocates nothing, counts nothing; any thread may
/// call it. The county is looked at by neither.
///
///     ExplainTestCNP("1800101221145")   // {CodeKind::Personal, CodeRule::CheckDigit, 12, 4}
///     ExplainTestCNP("18001o1221144")   // {CodeKind::Personal, CodeRule::Character, 5, -1}
[[nodiscard]] KIV_API CodeFault ExplainTestCNP(TextView code) noexcept;

/// The birth year that the first three characters say: 19YY after 1 or 2, 20YY after 5 or 6, YY - 1 after anything
/// else. Nothing else is looked at; ask TestCNP() first. Throws Error for fewer than three characters and
/// ConversionError where characters 2 and 3 are not a number.
///
///     AnulNasteriiDinCnp("1800101221144")   // 1980
///     AnulNasteriiDinCnp("780")             // 79
[[nodiscard]] KIV_API std::int32_t AnulNasteriiDinCnp(TextView code);

/// The birth date with the month's name from NumeLuna, or "CNP incorect" where TestCNP() says no. The century is the
/// first digit's, so that "1000229123456" gives "29 Februarie 1900", a day that TestCNP() took as one of 2000.
///
///     DataNasteriiDinCNP("1800101221144")   // "1 Ianuarie 1980"
[[nodiscard]] KIV_API Text DataNasteriiDinCNP(TextView code);

/// The same with the month's name from NumeLunaScurt.
///
///     DataNasteriiDinCNP_scurt("1800101221144")   // "1 ian 1980"
[[nodiscard]] KIV_API Text DataNasteriiDinCNP_scurt(TextView code);

/// The age in calendar years: this year of the system's local clock less the birth year (century by the first digit).
/// Month and day do not count. 0 where TestCNP() says no and for a birth year that is still to come.
///
///     VarstaDinCNP("1800101221144")   // 44 on every day of 2024
[[nodiscard]] KIV_API std::int32_t VarstaDinCNP(TextView code);

}  // namespace kiv
