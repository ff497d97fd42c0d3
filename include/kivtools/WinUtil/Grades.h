/// @file
/// School grades in words, as the unit WinUtil writes them.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A grade, given times 100, in brackets and in upper-case words with diacritics. `mode` 1 writes the hundredths in
/// words, 2 in figures, 3 in figures with "%" after them; any other mode gives the empty Text. A ten never shows
/// hundredths. Whole grades outside 1 to 10 have no word. Never throws; any thread may call it.
///
/// The words differ from those of NotaToTextLung in 12, 14 and 16; hosts rely on both.
///
///     NotaToStr(950, 1)   // "(NOUĂ, CINCIZECI)"
///     NotaToStr(950, 2)   // "(NOUĂ, 50)"
///     NotaToStr(950, 3)   // "(NOUĂ, 50%)"
///     NotaToStr(800, 3)   // "(OPT)"
[[nodiscard]] KIV_API Text NotaToStr(std::int32_t grade, std::int32_t mode);

}  // namespace kiv
