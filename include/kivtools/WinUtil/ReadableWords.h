/// @file
/// Numbers and sums of money in words that people read: lower case, with diacritics and blanks, "de" where the grammar
/// wants it, in any currency. What nothing may be slipped into is InLitere()'s; both use the forms that documents have
/// ("una sută", "patrusprezece", "şasezeci").
///
/// The results are Text; `ToUtf8(words, DiacriticForm::CommaBelow)` has today's letters with a comma below. All
/// operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Text.h"
#include "kivtools/Types.h"

namespace kiv {

/// The gender of what is counted: "unu, doi" lei, "una, două" lire, "unu, două" procente.
enum class GrammaticalGender : std::uint8_t { Masculine = 0, Feminine = 1, Neuter = 2 };

/// What is counted. The texts are the caller's.
struct CountedNoun {
  TextView singular;  ///< "leu"
  TextView plural;    ///< "lei"
  GrammaticalGender gender = GrammaticalGender::Masculine;
};

/// A currency and its hundredth part.
struct CurrencyNames {
  CountedNoun unit;
  CountedNoun hundredth;
};

inline constexpr CurrencyNames kLei = {{"leu", "lei"}, {"ban", "bani"}};
inline constexpr CurrencyNames kEuro = {{"euro", "euro"}, {"cent", literals::operator""_ro<"cenţi">()}};
inline constexpr CurrencyNames kDolari = {{"dolar", "dolari"}, {"cent", literals::operator""_ro<"cenţi">()}};

/// The names of a currency that a text tells: "RON", "EUR" or "USD", or six fields between commas, each noun's
/// singular, plural and gender (m, f or n). The names lie in `text`. Throws Error for anything else, with the text.
///
///     CurrencyNamesOf("EUR")                          // kEuro
///     CurrencyNamesOf("liră,lire,f,penny,pence,m")    // two nouns, the first feminine
[[nodiscard]] KIV_API CurrencyNames CurrencyNamesOf(TextView text);

/// A whole number in words, of any size.
///
///     InCuvinte(2345)                                 // "două mii trei sute patruzeci şi cinci"
///     InCuvinte(-21, GrammaticalGender::Feminine)     // "minus douăzeci şi una"
///     InCuvinte(20'000)                               // "douăzeci de mii"
[[nodiscard]] KIV_API Text InCuvinte(std::int64_t number, GrammaticalGender gender = GrammaticalGender::Masculine);

/// So many of something. "de" comes before the noun from 20 up, but for numbers whose last two digits are 01 to 19.
/// Throws Error for a noun without the form that is needed.
///
///     InCuvinte(119, {"zi", "zile", GrammaticalGender::Feminine})   // "una sută nouăsprezece zile"
///     InCuvinte(120, {"zi", "zile", GrammaticalGender::Feminine})   // "una sută douăzeci de zile"
[[nodiscard]] KIV_API Text InCuvinte(std::int64_t number, const CountedNoun& noun);

/// A sum of money in words, of any size and sign. Decimals past the hundredths are dropped, never rounded; without
/// whole units the hundredths stand alone. Throws Error for a currency without the form that is needed.
///
///     InCuvinte(2304.50_lei)         // "două mii trei sute patru lei şi cincizeci de bani"
///     InCuvinte(1.01_lei, kEuro)     // "un euro şi un cent"
///     InCuvinte(Currency())          // "zero lei"
[[nodiscard]] KIV_API Text InCuvinte(Currency amount, const CurrencyNames& currency = kLei);

}  // namespace kiv
