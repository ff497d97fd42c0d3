/// @file
/// Quoting, padding, masks and names: small shapings of Text for forms and reports. Lengths, widths and positions are
/// in characters, which are bytes. Blanks are tab, line feed, carriage return and space.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The text between two quote characters; a quote within is doubled. Never throws.
///
///     TextIntreGhilimele('\'', "l'an")   // 'l''an'
[[nodiscard]] KIV_API Text TextIntreGhilimele(char quote, TextView text);

/// The text between double quotes. Example: `TextInGhilimele("")` is two double quotes.
[[nodiscard]] KIV_API Text TextInGhilimele(TextView text);

/// TextIntreGhilimele with its arguments the other way round. Example: `QuoteText("a", '|')` is "|a|".
[[nodiscard]] KIV_API Text QuoteText(TextView text, char quote);

/// The text without its double quotes: the first and the last character are dropped whatever they are, two double
/// quotes within give one, reading stops at a lone one. A text shorter than 3 characters gives the empty Text. Never
/// throws.
///
///     TextDinGhilimele("\"ab\"\"c\"")   // ab"c
[[nodiscard]] KIV_API Text TextDinGhilimele(TextView text);

/// The text with `fill` before it up to `length` characters; never shortened.
///
///     PadLeft("7", 3, '0')   // "007"
[[nodiscard]] KIV_API Text PadLeft(TextView text, std::int32_t length, char fill);

/// The text with `fill` after it up to `length` characters; never shortened. Example: `PadRight("7", 3, '.')` is "7..".
[[nodiscard]] KIV_API Text PadRight(TextView text, std::int32_t length, char fill);

/// The text at exactly `width` characters. A shorter one is continued with `fill` (a blank if it is empty), a longer
/// one keeps its first `width` - 1 characters and its last. Throws Error for a width below 1.
///
///     TextDeLatimeFixa("abcdef", 3, " ")   // "abf"
[[nodiscard]] KIV_API Text TextDeLatimeFixa(TextView text, std::int32_t width, TextView fill);

/// The decimal digits of the text, in order; everything else is dropped. Example: `StripDot("-1.5")` is "15".
[[nodiscard]] KIV_API Text StripDot(TextView text);

/// An amount as digits with exactly two decimals, cut and not rounded; "," and "." both begin the decimals and the
/// sign is dropped. Throws Error "\"...\" include mai multe puncte zecimale" for two or more of them.
///
///     StripDotExtract2CifreDupaVirgula("12,5")   // "1250"
[[nodiscard]] KIV_API Text StripDotExtract2CifreDupaVirgula(TextView text);

/// The text with "." between groups of `group` characters counted from the left. Throws Error for a group below 1.
///
///     PunePuncteInSimbol("1234", 3)   // "123.4"
[[nodiscard]] KIV_API Text PunePuncteInSimbol(TextView text, std::int32_t group);

/// Whether the text fits the mask: "#" takes a digit or "#", "?" any character, "*" all that follows, every other
/// character only itself. An empty mask fits nothing. Never throws.
///
///     RespectaMasca("12-AB", "##-??")   // true
[[nodiscard]] KIV_API bool RespectaMasca(TextView text, TextView mask);

/// Whether two identifiers are equal in all their parts. Example: `GuidEgal(id, id)` is true.
[[nodiscard]] KIV_API bool GuidEgal(const Guid& left, const Guid& right) noexcept;

/// The surname of a full name: its first word. Example: `NumeDinNumeSiPrenume(" Popescu  Ion Vasile")` is "Popescu".
[[nodiscard]] KIV_API Text NumeDinNumeSiPrenume(TextView fullName);

/// The first name of a full name: its second word only, empty if there is none.
/// Example: `PrenumeDinNumeSiPrenume(" Popescu  Ion Vasile")` is "Ion".
[[nodiscard]] KIV_API Text PrenumeDinNumeSiPrenume(TextView fullName);

/// A telephone number in dotted groups of digits; other characters are dropped. Fewer than three digits give the empty
/// Text. Short numbers repeat digits in overlapping groups.
///
///     ScrieFrumosNrTelefon("0722 123456")   // "0722.123.456"
///     ScrieFrumosNrTelefon("0211234567")    // "021.12.34.567"
[[nodiscard]] KIV_API Text ScrieFrumosNrTelefon(TextView number);

}  // namespace kiv
