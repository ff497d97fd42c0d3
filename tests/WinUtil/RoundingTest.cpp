#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <tuple>

#include "Expect.h"
#include "kivtools/WinUtil/Rounding.h"

namespace kiv {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kTwoTo63 = 9223372036854775808.0;

/// Calls `check` in each rounding mode and, where the processor has the setting, with 53 bits of mantissa too.
template <class Check>
void InEverySetting(Check check) {
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const unsigned precision : {0x0300U, 0x0200U}) {
      std::uint16_t control = 0;
      asm volatile("fnstcw %0" : "=m"(control));
      const auto changed = static_cast<std::uint16_t>((control & 0xFCFFU) | precision);
      asm volatile("fldcw %0" : : "m"(changed));
      std::fesetround(mode);
      check();
      EXPECT_EQ(std::fegetround(), FE_TONEAREST) << "left so on purpose";
      std::uint16_t after = 0;
      asm volatile("fnstcw %0" : "=m"(after));
      EXPECT_EQ(after & 0x0300U, precision) << "the caller's own";
      asm volatile("fldcw %0" : : "m"(control));
    }
  }
}

TEST(SmartRound, SettlesHalvesUpwardInEverySetting) {
  const struct {
    double value, rounded;
  } kCases[] = {
      {2.5, 3},
      {-2.5, -2},
      {0.5, 1},
      {-0.5, 0},
      {1.4999, 1},
      {-1.5001, -2},
      {0, 0},
      {0.49999999998, 0},
      {0.499999999995, 1},                     // the nudge lifts it over the half
      {4503599627370495.5, 4503599627370496},  // the nudge is lost: halves to even
      {1024.5, 1025},
      {1048576.5, 1048577},
      {134217728.5, 134217729},
      {67108864.5, 67108865},  // a mantissa of 53 bits would lose it here
      {kTwoTo63 - 1024, kTwoTo63 - 1024},
      {-kTwoTo63, -kTwoTo63},
  };
  for (const auto& [value, rounded] : kCases) {
    InEverySetting([value = value, rounded = rounded] { EXPECT_EQ(SmartRound(value), rounded) << value; });
  }
  EXPECT_FALSE(std::signbit(SmartRound(-0.25)));
  for (const double refused : {kTwoTo63, -kTwoTo63 * 1.0001, 1e300, kInfinity, -kInfinity, kNotANumber}) {
    EXPECT_THROW(std::ignore = SmartRound(refused), Error) << refused;
  }
  ExpectError<Error>([] { return SmartRound(1e300); }, "SmartRound: rezultatul pentru 1e+300 nu incape in 64 de biti");
}

TEST(SmartRoundTo, GivesTheNearestDoubleInEverySetting) {
  const struct {
    double value;
    int digit;
    double rounded;
  } kCases[] = {
      {0.125, -2, 0.13},
      {-0.125, -2, -0.12},
      {1.005, -2, 1.01},
      {2.675, -2, 2.68},
      {250, 2, 300},
      {-250, 2, -200},
      {149, 2, 100},
      {2.5, 0, 3},
      {1234567.894999, -2, 1234567.89},
      {0, -11, 1e-11},
      {123.456, -12, 123.45600000001},
      {5e17, 18, 0},
      {6e17, 18, 1e18},
      {1, 127, 0},
      {9e130, 127, 9e130},
  };
  for (const auto& [value, digit, rounded] : kCases) {
    InEverySetting([=, value = value, digit = digit, rounded = rounded] {
      EXPECT_EQ(SmartRoundTo(value, static_cast<std::int8_t>(digit)), rounded) << value << " " << digit;
    });
  }
  // Every sum of money up to 10,000 lei comes out as its own literal.
  for (int bani = 0; bani <= 1'000'000; ++bani) {
    const double exact = bani / 100.0;
    ASSERT_EQ(SmartRoundTo(exact, -2), exact);
    ASSERT_EQ(SmartRoundTo(exact + 0.004, -2), exact);
  }
  EXPECT_THROW(std::ignore = SmartRoundTo(1e17, -2), Error);
  EXPECT_THROW(std::ignore = SmartRoundTo(0, -128), Error) << "the nudge alone is 1e117 multiples";
  EXPECT_THROW(std::ignore = SmartRoundTo(kNotANumber, 0), Error);
  EXPECT_THROW(std::ignore = SmartRoundTo(1e300, 127), Error);
}

}  // namespace
}  // namespace kiv
