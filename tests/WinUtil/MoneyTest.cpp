#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "Expect.h"
#include "WinUtil/MoneyRule.h"
#include "kivtools/WinUtil/Money.h"

namespace kiv {
namespace {

using namespace literals;

constexpr Currency kLargest = Currency::FromRaw(std::numeric_limits<std::int64_t>::max());
constexpr Currency kSmallest = Currency::FromRaw(std::numeric_limits<std::int64_t>::min());

constexpr Currency Negative(Currency amount) {
  return Currency::FromRaw(-amount.Raw());
}

TEST(Money, Writes) {
  const struct {
    Currency amount;
    std::int32_t decimals;
    TextView text;
  } kCases[] = {
      {1234567.89_lei, 2, "1.234.567, 89"},
      {Negative(1234.5_lei), 2, "-1.234, 50"},
      {0.0001_lei, 4, "0, 0001"},
      {12_lei, 0, "12"},
      {1.9999_lei, 0, "1"},
      {1.2399_lei, 2, "1, 23"},
      {Negative(0.5_lei), 0, "-0"},
      {12.5_lei, -1, "12, "},
      {12.5_lei, std::numeric_limits<std::int32_t>::min(), "12, "},
      {0_lei, 2, "0, 00"},
      {100'000_lei, 2, "100.000, 00"},
      {999'999.9999_lei, 3, "999.999, 999"},
      {1000.05_lei, 7, "1.000, 0500"},
      {kLargest, 4, "922.337.203.685.477, 5807"},
      {kSmallest, 4, "-922.337.203.685.477, 5808"},
  };
  for (const auto& [amount, decimals, text] : kCases) {
    EXPECT_EQ(CurrencyToRoStr(amount, decimals), text);
    Text dense(text);
    std::erase(dense, ' ');
    EXPECT_EQ(CurrencyToRoStrFaraSpatiu(amount, decimals), dense);
  }
}

TEST(Money, OldLeiBecomeNewLeiWithHalvesToEven) {
  const struct {
    Currency amount;
    TextView text;
  } kCases[] = {
      {12345678_lei, "1.234, 5678"},
      {15000_lei, "1, 50"},
      {10000_lei, "1, 00"},
      {5_lei, "0, 0005"},
      {Negative(25000_lei), "-2, 50"},
      {0_lei, "0, 00"},
      {123_lei, "0, 0123"},
      {0.5_lei, "0, 00"},               // half of the last place: to even, 0
      {1.5_lei, "0, 0002"},             // to even, 2
      {Negative(2.5_lei), "-0, 0002"},  // to even, -2
      {Negative(2.5001_lei), "-0, 0003"},
      {Negative(0.5_lei), "0, 00"},  // rounded away, and the sign with it
      {kLargest, "92.233.720.368, 5478"},
      {kSmallest, "-92.233.720.368, 5478"},
  };
  for (const auto& [amount, text] : kCases) {
    EXPECT_EQ(CurrencyToRoStrRON(amount, 2), text);
    EXPECT_EQ(CurrencyToRoStrRON(amount, 0), text) << "the decimals are ignored";
  }
}

TEST(Money, Reads) {
  const struct {
    TextView text;
    Currency amount;
  } kCases[] = {
      {"1.234,56", 1234.56_lei},
      {"-1 234,5", Negative(1234.5_lei)},
      {",5", 0.5_lei},
      {"", 0_lei},
      {"-", 0_lei},
      {"1,23456", 1.2345_lei},
      {"1.2.3", 123_lei},
      {"--5", Negative(5_lei)},
      {"5-", 5_lei},
      {"12-34", 1234_lei},
      {" -5", 5_lei},  // not in the first position: skipped
      {"1, 5", 1.5_lei},
      {"1,", 1_lei},
      {"1.234.567, 89", 1234567.89_lei},
      {"12.34", 1234_lei},
      {"1.2345", 12345_lei},
      {"000000000000000000000000000000,00019", 0.0001_lei},
      {"922337203685477,58079", kLargest},
      {"-922337203685477,5807", Negative(kLargest)},
  };
  for (const auto& [text, amount] : kCases) {
    EXPECT_EQ(RoStrToCurrency(text).Raw(), amount.Raw()) << text;
  }
}

TEST(Money, RefusesToReadNamingTheText) {
  const struct {
    Text text;
    Text reason;
  } kCases[] = {
      {"12,3,4", " include doua virgule"},
      {",,", " include doua virgule"},
      {"12a", " nu este un numar"},
      {"+5", " nu este un numar"},
      {"1\t2", " nu este un numar"},
      {"\n", " nu este un numar"},
      {"99999999999999999999x", " nu este un numar"},
      {"1,2x,", " nu este un numar"},
      {"1,2,x", " include doua virgule"},
  };
  for (const auto& [text, reason] : kCases) {
    ExpectError<Error>([&text = text] { return RoStrToCurrency(text); }, text + reason);
  }
  for (const Text text :
       {"922337203685477,5808", "-922337203685477,5808", "1000000000000000", "18446744073709551616"}) {
    ExpectError<ConversionError>([&text] { return RoStrToCurrency(text); }, "\"" + text + "\" nu este un numar intreg");
  }
}

TEST(Money, WhatIsWrittenReadsBack) {
  std::mt19937_64 random(2);
  std::mt19937 shape(3);
  for (int i = 0; i < 300'000; ++i) {
    const auto raw = static_cast<std::int64_t>(random() >> (shape() % 64));
    const Currency amount = Currency::FromRaw(shape() % 2 == 0 ? raw : -raw);
    if (amount == kSmallest) {
      continue;  // has no positive counterpart to read
    }
    ASSERT_EQ(RoStrToCurrency(CurrencyToRoStr(amount, 4)), amount) << amount.Raw();
    ASSERT_EQ(RoStrToCurrency(CurrencyToRoStrFaraSpatiu(amount, 4)), amount) << amount.Raw();
  }
  ExpectError<ConversionError>([] { return RoStrToCurrency(CurrencyToRoStr(kSmallest, 4)); },
                               "\"-922.337.203.685.477, 5808\" nu este un numar intreg");
}

TEST(Money, ReadsOrRefusesAnyMixtureOfMarksAsThePlainRule) {
  std::mt19937 random(4);
  for (int i = 0; i < 300'000; ++i) {
    Text text(random() % 28, ' ');
    for (char& character : text) {
      character = "00123456789012345678901234567..... -,"[random() % 37];
    }
    ASSERT_EQ(ReadMoney(text), PlainReadMoney(text)) << text;
  }
}

}  // namespace
}  // namespace kiv
