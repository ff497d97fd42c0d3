/// @file
/// Rounding that settles halves upward.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The nearest integer after adding 1e-11, so that exact halves go up. The sum is formed with 64 bits of mantissa, and
/// neither the caller's rounding mode nor the processor's precision setting changes the result; the rounding mode is
/// to-nearest afterwards, on purpose. Throws Error for what is no number and for a result outside the signed 64-bit
/// range.
///
///     SmartRound(2.5)    // 3
///     SmartRound(-2.5)   // -2
[[nodiscard]] KIV_API double SmartRound(double value);

/// The nearest multiple of 10^digit after adding 1e-11: digit -2 rounds to hundredths, 0 to units, 2 to hundreds. The
/// result is the double nearest to that decimal number. Precision, rounding mode and errors are those of SmartRound;
/// the range counts for the number of multiples.
///
///     SmartRoundTo(0.125, -2)   // 0.13
[[nodiscard]] KIV_API double SmartRoundTo(double value, std::int8_t digit);

}  // namespace kiv
