/// @file
/// Romanian letters to plain ones and back from an escape notation; templates with placeholders.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// Takes the diacritics off the ten Romanian letters. Every "?" becomes "t", because that is how a ţ comes back that an
/// earlier conversion lost; other bytes stay. The length stays the same.
///
///     RoToEn("ŞTIINŢĂ"_ro)   // "STIINTA"
///     RoToEn("Ce?")          // "Cet"
[[nodiscard]] KIV_API Text RoToEn(TextView text);

/// Puts Romanian letters in the place of their escapes: @a ă, @h â, @i î, @s ş, @t ţ, the upper-case ones likewise, and
/// @@ for "@". An escape that is none of these vanishes with its letter, as does an "@" at the end.
///
///     RoText("Bra@sov, @Tara Rom@hneasc@a")   // "Braşov, Ţara Românească"
[[nodiscard]] KIV_API Text RoText(TextView text);

/// The text with every byte `from` replaced by `to`. Example: `CharReplace("1,50", ',', '.')` is "1.50".
[[nodiscard]] KIV_API Text CharReplace(TextView text, char from, char to);

/// Fills the placeholders "%name%" of a mask. `pairs` holds name, value, name, value and so on; names compare without
/// regard to the case of ASCII letters, and of several equal names the last one counts. A placeholder without a pair
/// stays as it is; one that is still open at the end of the mask is dropped with its name. "%%" has the empty name.
/// Values are not searched for placeholders. Throws Error, naming the name, where a placeholder matches a last name
/// that has no value after it.
///
///     MaskReplace("Stimate %Nume%, suma: %SUMA% lei %x%", {"nume", "Ion", "suma", "12,50"})
///     // "Stimate Ion, suma: 12,50 lei %x%"
[[nodiscard]] KIV_API Text MaskReplace(TextView mask, const StringList& pairs);

}  // namespace kiv
