/// @file
/// Numbers and sums of money in Romanian words, as payment orders, receipts and invoices carry them: upper case, no
/// diacritics, no blank within a number, so that nothing can be slipped in between.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A whole number in words. Only the low 32 bits count, read as a signed number: 4294967301 gives "CINCI". Throws Error
/// with "Numarul N nu se afla in intervalul 0..999" for a negative number (N is its first negative part) and from a
/// billion up (N is the count of millions).
///
///     InLitere(2345)   // "DOUAMIITREISUTEPATRUZECISICINCI"
[[nodiscard]] KIV_API Text InLitere(std::int64_t value);

/// A sum of money in words. Decimals past the bani are dropped, never rounded, so that -0.0099 lei are "ZERO LEI".
/// Throws Error as the whole-number form does, for sums of -0.01 lei and below and from a billion lei up: no wrong sum
/// is ever written.
///
///     InLitere(1234.56_lei)   // "UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI"
[[nodiscard]] KIV_API Text InLitere(Currency amount);

/// A sum of money in words with the bani in two digits, without any blank. Throws Error as InLitere does.
///
///     InLitereMF(1.05_lei)   // "UNLEU,05BANI"
[[nodiscard]] KIV_API Text InLitereMF(Currency amount);

}  // namespace kiv
