#include <gtest/gtest.h>

#include <limits>

#include "Expect.h"
#include "kivtools/Text.h"
#include "kivtools/WinUtil/ReadableWords.h"

namespace kiv {
namespace {

using namespace literals;
using enum GrammaticalGender;

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();

Text Utf8(TextView text) {
  return ToUtf8(text, DiacriticForm::CommaBelow);
}

TEST(ReadableWords, NumbersOfEachGender) {
  const struct {
    std::int64_t number;
    GrammaticalGender gender;
    TextView words;
  } kCases[] = {
      {0, Masculine, "zero"},
      {1, Masculine, "unu"},
      {1, Feminine, "una"},
      {1, Neuter, "unu"},
      {2, Masculine, "doi"},
      {2, Feminine, "două"},
      {2, Neuter, "două"},
      {12, Masculine, "doisprezece"},
      {12, Feminine, "douăsprezece"},
      {12, Neuter, "douăsprezece"},
      {20, Masculine, "douăzeci"},
      {-21, Feminine, "minus douăzeci și una"},
      {66, Masculine, "șasezeci și șase"},
      {101, Masculine, "una sută unu"},
      {1000, Masculine, "una mie"},
      {1002, Masculine, "una mie doi"},
      {2345, Masculine, "două mii trei sute patruzeci și cinci"},
      {19'000, Masculine, "nouăsprezece mii"},
      {20'000, Masculine, "douăzeci de mii"},
      {100'000, Masculine, "una sută de mii"},
      {101'000, Masculine, "una sută una mii"},
      {1'000'000, Feminine, "un milion"},
      {22'000'001, Feminine, "douăzeci și două de milioane una"},
      {1'000'000'000, Masculine, "un miliard"},
      {2'000'000'000'000, Masculine, "două bilioane"},
      {kMost, Masculine,
       "nouă trilioane două sute douăzeci și trei de biliarde trei sute șaptezeci și două de bilioane treizeci și șase "
       "de miliarde opt sute cincizeci și patru de milioane șapte sute șaptezeci și cinci de mii opt sute șapte"},
      {kLeast, Masculine,
       "minus nouă trilioane două sute douăzeci și trei de biliarde trei sute șaptezeci și două de bilioane treizeci "
       "și "
       "șase de miliarde opt sute cincizeci și patru de milioane șapte sute șaptezeci și cinci de mii opt sute opt"},
  };
  for (const auto& [number, gender, words] : kCases) {
    EXPECT_EQ(Utf8(InCuvinte(number, gender)), words) << number;
  }
}

TEST(ReadableWords, SumsOfAnyCurrency) {
  constexpr CurrencyNames kLire = {{"liră"_ro, "lire", Feminine}, {"penny", "pence"}};
  constexpr CurrencyNames kPuncte = {{"punct", "puncte", Neuter}, {"parte", "părți"_ro, Feminine}};
  const struct {
    std::int64_t raw;
    const CurrencyNames& currency;
    TextView words;
  } kCases[] = {
      {23'045'000, kLei, "două mii trei sute patru lei și cincizeci de bani"},
      {0, kLei, "zero lei"},
      {-99, kLei, "zero lei"},  // what is below a ban is dropped, and its sign with it
      {-100, kLei, "minus un ban"},
      {500, kLei, "cinci bani"},
      {10'199, kLei, "un leu și un ban"},
      {-10'200, kLei, "minus un leu și doi bani"},
      {190'000, kLei, "nouăsprezece lei"},
      {200'000, kLei, "douăzeci de lei"},
      {1'010'000, kLei, "una sută unu lei"},
      {1'200'000, kLei, "una sută douăzeci de lei"},
      {10'000'000'000, kLei, "un milion de lei"},
      {10'000'190'000, kLei, "un milion nouăsprezece lei"},
      {210'000, kEuro, "douăzeci și unu de euro"},
      {12'000, kEuro, "un euro și douăzeci de cenți"},
      {20'100, kDolari, "doi dolari și un cent"},
      {10'100, kLire, "una liră și un penny"},
      {220'200, kLire, "douăzeci și două de lire și doi pence"},
      {10'100, kPuncte, "un punct și una parte"},
      {120'200, kPuncte, "douăsprezece puncte și două părți"},
      {kMost, kLei,
       "nouă sute douăzeci și două de bilioane trei sute treizeci și șapte de miliarde două sute trei milioane șase "
       "sute optzeci și cinci de mii patru sute șaptezeci și șapte de lei și cincizeci și opt de bani"},
  };
  for (const auto& [raw, currency, words] : kCases) {
    EXPECT_EQ(Utf8(InCuvinte(Currency::FromRaw(raw), currency)), words) << raw;
  }
  EXPECT_EQ(InCuvinte(Currency::FromRaw(kLeast)), "minus " + InCuvinte(Currency::FromRaw(kMost)));
  EXPECT_EQ(InCuvinte(119, {"zi", "zile", Feminine}), "una sută nouăsprezece zile"_ro);
  EXPECT_EQ(InCuvinte(-1, {"zi", "zile", Feminine}), "minus una zi");
  EXPECT_EQ(InCuvinte(2, {"", "zile", Feminine}), "două zile"_ro);
  ExpectError<Error>([] { return InCuvinte(1, {"", "zile"}); }, "InCuvinte: numele a ceea ce se numara lipseste");
}

TEST(ReadableWords, CurrenciesByCodeOrBySixFields) {
  const struct {
    TextView text;
    TextView ofTwoUnitsTwo;  ///< 2.02 in words, or the error
  } kCases[] = {
      {"RON", "doi lei și doi bani"},
      {"EUR", "doi euro și doi cenți"},
      {"USD", "doi dolari și doi cenți"},
      {"a,b,f,c,d,n", "două b și două d"},
      {"a,b,m,c,d,m", "doi b și doi d"},
      {"ron", "CurrencyNamesOf: \"ron\" nu este RON, EUR, USD sau o moneda ca \"leu,lei,m,ban,bani,m\""},
      {"", "CurrencyNamesOf: \"\" nu este RON, EUR, USD sau o moneda ca \"leu,lei,m,ban,bani,m\""},
      {"a,b,m,c,d", "CurrencyNamesOf: \"a,b,m,c,d\" nu este RON, EUR, USD sau o moneda ca \"leu,lei,m,ban,bani,m\""},
      {"a,,m,c,d,m", "CurrencyNamesOf: \"a,,m,c,d,m\" nu este RON, EUR, USD sau o moneda ca \"leu,lei,m,ban,bani,m\""},
      {"a,b,m,c,d,m,", "CurrencyNamesOf: \"m,\" din \"a,b,m,c,d,m,\" nu este genul m, f sau n"},
      {"a,b,x,c,d,m", "CurrencyNamesOf: \"x\" din \"a,b,x,c,d,m\" nu este genul m, f sau n"},
  };
  for (const auto& [text, expected] : kCases) {
    Text found;
    try {
      found = Utf8(InCuvinte(2.02_lei, CurrencyNamesOf(text)));
    } catch (const Error& error) {
      found = error.what();
    }
    EXPECT_EQ(found, expected);
  }
}

}  // namespace
}  // namespace kiv
