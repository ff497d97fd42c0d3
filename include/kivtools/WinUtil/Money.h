/// @file
/// Sums of money as Romanian numeric text, and back: "." between groups of three digits, "," before the decimals, "-"
/// in front. Everything is computed on the exact count of ten-thousandths; decimals are cut, never rounded, except
/// where a comment says so.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The amount with that many decimals, a comma and a blank before them. 0 decimals gives the whole part alone, 4 or
/// more give four, a negative count gives none after the comma. A negative amount keeps its "-" even if no digit shown
/// is other than zero. Never throws.
///
///     CurrencyToRoStr(1234567.89_lei, 2)   // "1.234.567, 89"
[[nodiscard]] KIV_API Text CurrencyToRoStr(Currency amount, std::int32_t decimals);

/// The same without the blank after the comma.
///
///     CurrencyToRoStrFaraSpatiu(1234567.89_lei, 2)   // "1.234.567,89"
[[nodiscard]] KIV_API Text CurrencyToRoStrFaraSpatiu(Currency amount, std::int32_t decimals);

/// An amount in old lei as new lei: divided by 10000, rounded to four decimals with halves to even, written as
/// CurrencyToRoStr does with four decimals, or two where the last two are zero. `decimals` is accepted and ignored.
///
///     CurrencyToRoStrRON(12345678_lei, 2)   // "1.234, 5678"
[[nodiscard]] KIV_API Text CurrencyToRoStrRON(Currency amount, std::int32_t decimals);

/// Reads an amount. Blanks and dots are skipped wherever they are, a "-" counts in the first position and is skipped
/// elsewhere, decimals past the fourth are cut, an empty text is 0. Throws Error with the text followed by
/// " include doua virgule" or " nu este un numar", and ConversionError where the magnitude exceeds
/// 922337203685477.5807.
///
///     RoStrToCurrency("-1 234,5")   // -1234.5
[[nodiscard]] KIV_API Currency RoStrToCurrency(TextView text);

}  // namespace kiv
