/// @file
/// Collation: the order of texts.
#pragma once

#include <cstdint>

#include "kivtools/Export.h"
#include "kivtools/Types.h"

namespace kiv {

/// How the texts of a field are compared. It concerns Text and Memo; a WideText is always in the order of its UTF-16
/// units.
enum class Collation : std::uint8_t {
  /// As a Romanian dictionary does: signs, digits, letters, each with its marks after it (a ă â b ... i î ... s ş t ţ),
  /// small before capital. Letters count first, marks of other languages next, capitals last, each over the whole text.
  /// Control characters do not count at all.
  Romanian,
  /// The same without the last step: "ARGES" and "arges" are equal, "é" still comes after "e".
  RomanianNoCase,
  /// Byte by byte.
  Binary,
};

/// Below 0 if `left` comes before `right`, 0 if neither does, above 0 otherwise. The texts are in Windows-1250; the
/// order is that of ICU's collator "ro", with its third level for Romanian and without it for RomanianNoCase.
///
///     CompareTexts("Şimleu"_ro, "Zimnicea", Collation::Romanian)   // below 0
///     CompareTexts("ARGES", "arges", Collation::RomanianNoCase)       // 0
[[nodiscard]] KIV_API int CompareTexts(TextView left, TextView right, Collation collation) noexcept;

/// A number that says of most texts which comes first: where two texts have different ones, those compare as the texts
/// do; equal ones decide nothing. Example: `CollationPrefix("Arad", c) < CollationPrefix("Bacau", c)` for every c.
[[nodiscard]] KIV_API std::uint64_t CollationPrefix(TextView text, Collation collation) noexcept;

}  // namespace kiv
