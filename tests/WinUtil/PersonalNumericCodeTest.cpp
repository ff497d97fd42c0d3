#include <gtest/gtest.h>

#include <array>
#include <random>
#include <tuple>

#include "Expect.h"
#include "FixedClock.h"
#include "WinUtil/IdentifierRules.h"
#include "core/PersonalNumericCode.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"

namespace kiv {
namespace {

using namespace std::literals;

/// The twelve digits with their control digit.
Text WithControl(Text twelve) {
  twelve.push_back(plain::CnpControl(twelve));
  return twelve;
}

// Hosts rely on two rules that disagree: the date check takes the century from YY alone, the texts and the age take it
// from the first digit. The last rows would differ if somebody made them one.
TEST(PersonalNumericCode, VerdictsAndBirthDates) {
  const struct {
    TextView code;
    TextView birthDate;
    TextView shortDate;
    std::int32_t ageIn2024;
  } kCases[] = {
      {"1800101221144", "1 Ianuarie 1980", "1 ian 1980", 44},
      {"1850505000091", "5 Mai 1985", "5 mai 1985", 39},  // remainder 10: the control digit is 1
      {"1850505000090", "CNP incorect", "CNP incorect", 0},
      {"1800101221145", "CNP incorect", "CNP incorect", 0},
      {"2030229123452", "CNP incorect", "CNP incorect", 0},  // 2003 has no 29 February
      {"180010122114", "CNP incorect", "CNP incorect", 0},
      {"18001012211440", "CNP incorect", "CNP incorect", 0},
      {" 1800101221144", "CNP incorect", "CNP incorect", 0},
      {"180010122114\0"sv, "CNP incorect", "CNP incorect", 0},
      {"", "CNP incorect", "CNP incorect", 0},
      {"1000229123456", "29 Februarie 1900", "29 feb 1900", 124},
  };
  const FixedClock clock(DateTime::Encode(2024, 12, 31, 23, 59, 59));
  for (const auto& [code, birthDate, shortDate, age] : kCases) {
    const bool valid = birthDate != "CNP incorect";
    EXPECT_EQ(TestCNP(code), valid) << code;
    EXPECT_EQ(DataNasteriiDinCNP(code), birthDate);
    EXPECT_EQ(DataNasteriiDinCNP_scurt(code), shortDate);
    EXPECT_EQ(VarstaDinCNP(code), age) << code;
  }
  EXPECT_EQ(DataNasteriiDinCNP(WithControl("510060112345")), "1 Iunie 2010") << "checked as a day of 1910";
  constexpr std::array<TextView, 12> kMonths = {"Ianuarie",   "Februarie", "Martie",    "Aprilie",
                                                "Mai",        "Iunie",     "Iulie",     "August",
                                                "Septembrie", "Octombrie", "Noiembrie", "Decembrie"};
  for (std::size_t month = 1; month <= kMonths.size(); ++month) {
    const Text twelve = Text(month < 10 ? "1800" : "180") + std::to_string(month) + "0122114";
    EXPECT_EQ(DataNasteriiDinCNP(WithControl(twelve)), "1 " + Text(kMonths.at(month - 1)) + " 1980");
  }
}

TEST(PersonalNumericCode, EveryDateUnderEveryFirstDigit) {
  int valid = 0;
  for (int date = 0; date < 1'000'000; ++date) {
    Text twelve = std::to_string(date);
    twelve.insert(0, 6 - twelve.size(), '0').insert(0, 1, "1256"[date % 4]).append("22114");
    const Text code = WithControl(twelve);
    const bool passes = TestCNP(code);
    ASSERT_EQ(passes, plain::TestCNP(code)) << code;
    valid += passes ? 1 : 0;
  }
  EXPECT_EQ(valid, 36'525);  // every day from 1905 to 2004
  for (char first = '0'; first <= '9'; ++first) {
    EXPECT_EQ(TestCNP(WithControl(Text(1, first) + "80010122114")), TextView("1256").find(first) != TextView::npos);
  }
}

TEST(PersonalNumericCode, ExactlyOneControlDigitAndNoOtherByte) {
  std::mt19937 random(13);
  for (int i = 0; i < 20'000; ++i) {
    Text code = std::to_string(180'010'100'000'000 / 1000 + static_cast<std::int64_t>(random() % 100'000)) + " ";
    int passing = 0;
    for (code[12] = '0'; code[12] <= '9'; ++code[12]) {
      passing += TestCNP(code) ? 1 : 0;
      ASSERT_EQ(TestCNP(code), plain::TestCNP(code)) << code;
    }
    ASSERT_EQ(passing, 1) << code;
  }
  for (std::size_t at = 0; at < 13; ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      Text code = "1800101221144";
      code[at] = static_cast<char>(byte);
      ASSERT_EQ(TestCNP(code), plain::TestCNP(code)) << code;
    }
  }
}

TEST(PersonalNumericCode, CountsEachVerdictOnce) {
  const std::uint32_t failed = CnpFailedCount;
  const std::uint32_t passed = CnpPassedCount;
  std::ignore = TestCNP("1800101221144");
  std::ignore = TestCNP("18");
  std::ignore = TestCNP("1800101221145");
  EXPECT_EQ(CnpPassedCount, passed + 1);
  EXPECT_EQ(CnpFailedCount, failed + 2);
}

TEST(PersonalNumericCode, BirthYearIsReadWithoutAnyCheck) {
  const struct {
    TextView code;
    std::int32_t year;
  } kCases[] = {
      {"1800101221144", 1980},
      {"180", 1980},
      {"299x", 1999},
      {"503", 2003},
      {"699", 2099},
      {"780", 79},  // hosts rely on the unknown century being -1
      {"x00", -1},
      {"1 5", 1905},
      {"1-5", 1895},
      {"1+5", 1905},
  };
  for (const auto& [code, year] : kCases) {
    EXPECT_EQ(AnulNasteriiDinCnp(code), year) << code;
  }
  ExpectError<Error>([] { return AnulNasteriiDinCnp("12"); },
                     "Codul numeric personal este eronat (are mai putin de 13 cifre) si nu pot extrage anul nasterii!");
  ExpectError<ConversionError>([] { return AnulNasteriiDinCnp("18x"); }, "\"8x\" nu este un numar intreg");
}

TEST(PersonalNumericCode, AgeCountsCalendarYearsOnly) {
  const Text born = WithControl("503121522114");  // 15 December 2003
  FixedClock clock(DateTime::Encode(2004, 1, 1));
  EXPECT_EQ(VarstaDinCNP(born), 1);
  clock.Set(DateTime::Encode(2003, 12, 31));
  EXPECT_EQ(VarstaDinCNP(born), 0);
  clock.Set(DateTime::Encode(2002, 6, 1));
  EXPECT_EQ(VarstaDinCNP(born), 0) << "not yet born";
  clock.Set(DateTime::Encode(2024, 6, 1));
  EXPECT_EQ(VarstaDinCNP(born), 21);
}

}  // namespace
}  // namespace kiv
