#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Numbers.h"

namespace kivtools {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(PlainAmount, IsExactOrRefused) {
  const struct {
    const char* text;
    std::int64_t amount;
  } kCases[] = {{"0", 0},       {"-0.0", 0},   {"1234.56", 12345600},           {"0001.5", 15000},
                {"-5", -50000}, {"0.0001", 1}, {"922337203685477.5807", kMost}, {"-922337203685477.5808", kLeast}};
  for (const auto& [text, amount] : kCases) {
    EXPECT_EQ(ReadPlainAmount(text), amount) << text;
  }
  for (const char* const bad : {"", "-", "+1", "1.", ".5", "1,5", "1.23456", "1e3", " 1", "1 ", "12a", "--1", "1.2.3",
                                "922337203685477.5808", "-922337203685477.5809", "99999999999999999999999"}) {
    try {
      ReadPlainAmount(bad);
      ADD_FAILURE() << bad;
    } catch (const InputError& error) {
      EXPECT_EQ(std::string(error.what()).find("\"" + std::string(bad) + "\" "), 0U) << error.what();
    }
  }
}

TEST(PlainAmount, ReadsBackWhatIsWritten) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 10000; ++i) {
    const auto amount = static_cast<std::int64_t>(random()) >> (random() % 64);
    EXPECT_EQ(ReadPlainAmount(WritePlainAmount(amount)), amount);
  }
  EXPECT_EQ(WritePlainAmount(kLeast), "-922337203685477.5808");
  EXPECT_EQ(WritePlainAmount(-500), "-0.05");
  EXPECT_EQ(WritePlainAmount(20000), "2");
}

TEST(WholeNumber, TakesItsRangeAndNamesIt) {
  EXPECT_EQ(ReadWholeNumber("-7", -7, 12, "an hour"), -7);
  EXPECT_EQ(ReadWholeNumber("0012", -7, 12, "an hour"), 12);
  for (const char* const bad : {"-8", "13", "", "1.0", "9223372036854775808", "x", "-", "+1", " 1"}) {
    try {
      ReadWholeNumber(bad, -7, 12, "an hour");
      ADD_FAILURE() << bad;
    } catch (const InputError& error) {
      EXPECT_EQ(error.what(), "\"" + std::string(bad) + "\" is not an hour from -7 to 12");
    }
  }
}

TEST(FileAmount, TakesBothNotationsAndRefusesWhatCouldBeEither) {
  const struct {
    const char* text;
    std::int64_t amount;
  } kCases[] = {
      {"12", 120000},
      {"1234,5", 12345000},
      {"1.234,50", 12345000},
      {"-1.234.567,89", -12345678900},
      {"1234.50", 12345000},
      {"1.5", 15000},
      {"1.2345", 12345},
      {"1.234.567", 12345670000},
      {"1,234", 12340},
      {"0.125", 1250},
      {"1234.567", 12345670},
      {"0,0001", 1},
      {"922.337.203.685.477,5807", kMost},
  };
  for (const auto& [text, amount] : kCases) {
    EXPECT_EQ(ReadFileAmount(text), amount) << text;
  }
  for (const char* const ambiguous : {"1.234", "-12.345", "999.000"}) {
    EXPECT_THROW(ReadFileAmount(ambiguous), InputError) << ambiguous;
  }
  for (const char* const bad :
       {"",         "-",       "1,",       ",5",      "1.",        ".5",       "1,2,3",
        "1,234.50", "12.34,5", "1.2345,6", "0.123,4", "0.123.456", "1.23.456", "1..2",
        "1.234.56", "1 234",   "1,23456",  "12a",     "--1",       "1.,5",     "922.337.203.685.477,5808"}) {
    EXPECT_THROW(ReadFileAmount(bad), InputError) << bad;
  }
  EXPECT_EQ(ReadFileAmount("5,25", 2), 52500);
  const auto complaint = [](const char* text) -> std::string {
    try {
      return std::to_string(ReadFileAmount(text, 2));
    } catch (const InputError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(complaint("5,250"), "has more than 2 decimals");
  EXPECT_EQ(complaint("922.337.203.685.477,59"), "is too large for an amount");
}

}  // namespace
}  // namespace kivtools
