#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Numbers.h"

namespace kivtools {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

/// Why the text is refused, or what it is read as.
template <class Read>
std::string Answer(const Read& read, std::string_view text) {
  try {
    return "read: " + WritePlainAmount(read(text));
  } catch (const InputError& error) {
    return error.what();
  }
}

TEST(PlainAmount, ReadsBackInBothNotations) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 10000; ++i) {
    const auto amount = static_cast<std::int64_t>(random()) >> (random() % 64);
    const std::string plain = WritePlainAmount(amount);
    const std::size_t point = std::min(plain.find('.'), plain.size());
    std::string romanian = plain;
    std::ranges::replace(romanian, '.', ',');
    EXPECT_EQ(ReadNumber(romanian), amount) << romanian;
    for (std::size_t at = point; at > 3 && plain[at - 4] != '-'; at -= 3) {
      romanian.insert(at - 3, ".");
    }
    if (point < plain.size()) {
      EXPECT_EQ(ReadNumber(romanian), amount) << romanian;
      // Three decimals behind what could be a group have a second reading.
      const std::size_t digits = point - (amount < 0 ? 1 : 0);
      const bool twofold = plain.size() - point == 4 && digits <= 3 && plain[point - digits] != '0';
      EXPECT_EQ(Answer([](auto text) { return ReadNumber(text); }, plain).starts_with("can be read in two ways"),
                twofold)
          << plain;
    }
    EXPECT_EQ(ReadAmount(" " + romanian + (point < plain.size() ? "\u00A0Eur " : ",0eur")), (Amount{amount, "EUR"}));
  }
  EXPECT_EQ(WritePlainAmount(kLeast), "-922337203685477.5808");
  EXPECT_EQ(WritePlainAmount(-500), "-0.05");
  EXPECT_EQ(WritePlainAmount(20000), "2");
}

TEST(WholeNumber, TakesItsRangeAndNamesIt) {
  constexpr Phrase kHour = {"an hour", "o oră"};
  EXPECT_EQ(ReadWholeNumber("-7", -7, 12, kHour), -7);
  EXPECT_EQ(ReadWholeNumber("0012", -7, 12, kHour), 12);
  for (const char* const bad : {"-8", "13", "", "1.0", "9223372036854775808", "x", "-", "+1", " 1"}) {
    try {
      ReadWholeNumber(bad, -7, 12, kHour);
      ADD_FAILURE() << bad;
    } catch (const InputError& error) {
      EXPECT_EQ(error.what(), "\"" + std::string(bad) + "\" is not an hour from -7 to 12");
    }
  }
}

TEST(Number, TakesBothNotationsAndRefusesWhatCouldBeEither) {
  const struct {
    const char* text;
    std::int64_t amount;
  } kCases[] = {
      {"12", 120000},
      {"-0.0", 0},
      {"0001.5", 15000},
      {"1234,5", 12345000},
      {"1.234,50", 12345000},
      {"-1.234.567,89", -12345678900},
      {"1234.50", 12345000},
      {"1.2345", 12345},
      {"1.234.567", 12345670000},
      {"1,234", 12340},
      {"0.125", 1250},
      {"1234.567", 12345670},
      {" 0,0001\u202F", 1},
      {"922.337.203.685.477,5807", kMost},
      {"-922337203685477.5808", kLeast},
  };
  for (const auto& [text, amount] : kCases) {
    EXPECT_EQ(ReadNumber(text), amount) << text;
  }
  const auto number = [](std::string_view text) { return ReadNumber(text); };
  for (const char* const bad :
       {"",        "-",         "1,",       ".5",   "1,2,3",    "1,234.50", "12.34,5", "1.2345,6",
        "0.123,4", "0.123.456", "1.23.456", "1..2", "1.234.56", "1 234",    "12a",     "--1",
        "1.,5",    "+1",        "1e3",      "lei",  "12 lei",   "\t12",     "- 1"}) {
    EXPECT_EQ(Answer(number, bad), "is not an amount such as 1.234,56 or 1234.56") << bad;
  }
  EXPECT_EQ(Answer(number, "-12.345"),
            "can be read in two ways: write 12345 for the whole number or 12,345 for decimals");
  EXPECT_EQ(Answer(number, "1,23456"), "has more than 4 decimals");
  for (const char* const outside : {"922337203685477.5808", "-922.337.203.685.477,5809", "99999999999999999999999"}) {
    EXPECT_EQ(Answer(number, outside), "is outside -922337203685477.5808 to 922337203685477.5807") << outside;
  }
  EXPECT_EQ(ReadNumber("5,25", 2), 52500);
  EXPECT_EQ(Answer([](auto text) { return ReadNumber(text, 2); }, "5,250"), "has more than 2 decimals");
  EXPECT_EQ(Answer([](auto text) { return ReadNumber(text, 0); }, "5,0"), "is not a whole number");
}

TEST(Amount, KnowsItsCurrency) {
  for (const char* const lei : {"12,5", "12,5 lei", "12.5LEU", "12,5 \u00A0 Ron"}) {
    EXPECT_EQ(ReadLei(lei), 125000) << lei;
  }
  EXPECT_EQ(ReadAmount("1 eur"), (Amount{10000, "EUR"}));
  EXPECT_EQ(ReadAmount("1"), (Amount{10000, ""}));
  EXPECT_EQ(Answer(ReadLei, "12,5 EUR"), "is in EUR, not in lei");
  for (const char* const bad : {"lei", "12 lei lei", "12 usd", "lei 12", "12 le"}) {
    EXPECT_THROW(ReadAmount(bad), InputError) << bad;
  }
}

}  // namespace
}  // namespace kivtools
