/// @file
/// School grades in words, as the unit WideTools writes them.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A grade, given times 100, in upper-case words with diacritics. A ten never shows hundredths. Whole grades outside 1
/// to 10 have no word, nor have negative hundredths. Never throws; any thread may call it.
///
///     NotaToTextLung(950)    // "NOUĂ, CINCIZECI"
///     NotaToTextLung(705)    // "ŞAPTE, ZEROCINCI"
///     NotaToTextLung(1050)   // "ZECE"
[[nodiscard]] KIV_API Text NotaToTextLung(std::int32_t grade);

/// The same with the hundredths in two figures, each of a negative grade with its sign.
///
///     NotaToTextScurt(705)    // "ŞAPTE, 05"
///     NotaToTextScurt(-955)   // ", -5-5"
[[nodiscard]] KIV_API Text NotaToTextScurt(std::int32_t grade);

}  // namespace kiv
