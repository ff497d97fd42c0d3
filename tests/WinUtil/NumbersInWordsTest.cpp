#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "Expect.h"
#include "kivtools/WinUtil/NumbersInWords.h"

namespace kiv {
namespace {

using namespace literals;

/// The plain rule, one digit at a time: what the tables must amount to.
Text ReferenceBelowThousand(int value, bool feminine) {
  static const char* const kDigits[] = {"ZERO", "UNU", "DOI", "TREI", "PATRU", "CINCI", "SASE", "SAPTE", "OPT", "NOUA"};
  const auto digit = [feminine](int n) -> Text {
    return feminine && n == 1 ? "UNA" : feminine && n == 2 ? "DOUA" : kDigits[n];
  };
  const auto stem = [](int n) -> Text { return n == 1 ? "UN" : n == 2 ? "DOUA" : kDigits[n]; };
  if (value >= 100) {
    const Text hundreds = value < 200 ? "UNASUTA" : stem(value / 100) + "SUTE";
    return value % 100 == 0 ? hundreds : hundreds + ReferenceBelowThousand(value % 100, feminine);
  }
  if (value < 10) {
    return digit(value);
  }
  if (value < 20) {
    return value == 10 ? "ZECE" : stem(value - 10) + "SPREZECE";
  }
  const Text tens = stem(value / 10) + "ZECI";
  return value % 10 == 0 ? tens : tens + "SI" + digit(value % 10);
}

Text Reference(int value) {
  Text words;
  const int millions = value / 1'000'000;
  const int thousands = value / 1000 % 1000;
  if (millions != 0) {
    words = ReferenceBelowThousand(millions, true) + "MILIOANE";
  }
  if (thousands != 0) {
    words += thousands == 1 ? "UNAMIE" : ReferenceBelowThousand(thousands, true) + "MII";
  }
  if (value % 1000 != 0 || value == 0) {
    words += ReferenceBelowThousand(value % 1000, false);
  }
  return words;
}

TEST(NumbersInWords, KnownTexts) {
  const struct {
    std::int64_t value;
    TextView words;
  } kCases[] = {
      {0, "ZERO"},
      {1, "UNU"},
      {12, "DOUASPREZECE"},
      {21, "DOUAZECISIUNU"},
      {92, "NOUAZECISIDOI"},
      {101, "UNASUTAUNU"},
      {212, "DOUASUTEDOUASPREZECE"},
      {1001, "UNAMIEUNU"},
      {12'000, "DOUASPREZECEMII"},
      {20'000, "DOUAZECIMII"},
      {21'000, "DOUAZECISIUNAMII"},
      {22'000, "DOUAZECISIDOUAMII"},
      {2345, "DOUAMIITREISUTEPATRUZECISICINCI"},
      {999'999, "NOUASUTENOUAZECISINOUAMIINOUASUTENOUAZECISINOUA"},
      {1'000'000, "UNAMILIOANE"},
      {2'000'001, "DOUAMILIOANEUNU"},
      {4'294'967'301, "CINCI"},  // only the low 32 bits count
  };
  for (const auto& [value, words] : kCases) {
    EXPECT_EQ(InLitere(value), words);
  }
}

TEST(NumbersInWords, AgreesWithThePlainRule) {
  for (int value = 0; value <= 200'000; ++value) {
    ASSERT_EQ(InLitere(value), Reference(value)) << value;
  }
  std::mt19937 random(1);
  for (int i = 0; i < 100'000; ++i) {
    const int value = static_cast<int>(random() % 1'000'000'000);
    ASSERT_EQ(InLitere(value), Reference(value)) << value;
  }
  EXPECT_EQ(InLitere(999'999'999), Reference(999'999'999));
}

TEST(NumbersInWords, SumsOfMoney) {
  const struct {
    Currency amount;
    TextView words;
    TextView compact;
  } kCases[] = {
      {1234.56_lei, "UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI",
       "UNAMIEDOUASUTETREIZECISIPATRULEI,56BANI"},
      {0.05_lei, "ZERO LEI SI CINCI BANI", "ZEROLEI,05BANI"},
      {100_lei, "UNASUTA LEI", "UNASUTALEI"},
      {1_lei, "UNU LEI", "UNLEU"},
      {1.05_lei, "UNU LEI SI CINCI BANI", "UNLEU,05BANI"},
      {2.50_lei, "DOI LEI SI CINCIZECI BANI", "DOILEI,50BANI"},
      {10.999_lei, "ZECE LEI SI NOUAZECISINOUA BANI", "ZECELEI,99BANI"},
      {1.0099_lei, "UNU LEI", "UNLEU"},
      {Currency::FromRaw(-99), "ZERO LEI", "ZEROLEI"},
  };
  for (const auto& [amount, words, compact] : kCases) {
    EXPECT_EQ(InLitere(amount), words);
    EXPECT_EQ(InLitereMF(amount), compact);
  }
  EXPECT_EQ(InLitere(777'777'777.77_lei).size(), 25U + 8 + 25 + 3 + 25 + 4 + 4 + 16 + 5)
      << "among the longest there are";
}

TEST(NumbersInWords, RefusesWhatItCannotWrite) {
  const auto message = [](std::int64_t value) {
    return "Numarul " + std::to_string(value) + " nu se afla in intervalul 0..999";
  };
  const struct {
    std::int64_t value;
    std::int64_t named;
  } kNumbers[] = {
      {-50, -50}, {-5000, -5}, {-1'000'001, -1}, {1'000'000'000, 1000}, {1'500'000'000, 1500}, {3'000'000'000, -1294},
  };
  for (const auto& [value, named] : kNumbers) {
    ExpectError<Error>([value = value] { return InLitere(value); }, message(named));
  }
  const struct {
    std::int64_t raw;
    std::int64_t named;
  } kSums[] = {
      {-15'000, -1},
      {-5'000, -50},
      {10'000'000'000'000, 1000},
      {42'949'673'010'000, 4294},  // would read as five lei in 32 bits
      {-42'949'673'010'000, -4294},
      {std::numeric_limits<std::int64_t>::max(), 922'337'203},
      {std::numeric_limits<std::int64_t>::min(), -922'337'203},
  };
  for (const auto& [raw, named] : kSums) {
    const Currency amount = Currency::FromRaw(raw);
    ExpectError<Error>([amount] { return InLitere(amount); }, message(named));
    ExpectError<Error>([amount] { return InLitereMF(amount); }, message(named));
  }
}

}  // namespace
}  // namespace kiv
