#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "Expect.h"
#include "WinUtil/IdentifierRules.h"
#include "kivtools/WinUtil/BankAndLocalityCodes.h"

namespace kiv {
namespace {

using namespace std::literals;

constexpr TextView kGood = "RO49AAAA1B31007593840000";

TEST(Iban, KnownVerdicts) {
  const struct {
    TextView text;
    bool valid;
    bool iban;
  } kCases[] = {
      {kGood, true, true},
      {"RO49 AAAA 1B31 0075 9384 0000", true, true},
      {"ro49aaaa1b31007593840000", true, true},
      {"IBAN RO49AAAA1B31007593840000", true, true},
      {" i b A nRO49AAAA1B31007593840000", true, true},  // blanks go before the word is looked for
      {"RO49AAAA1B3100iban7593840000", true, true},      // and it is looked for everywhere
      {"ROIBAN49AAAA1B31007593840000", true, true},
      {"IIBANRO49AAAA1B31007593840000", false, false},
      {"IBANIBANRO49AAAA1B31007593840000", false, false},  // only the first goes
      {"RO49AAAA1B31007593840001", false, false},
      {"RO49AAAA1B3100759384000\xD1", false, false},
      {"RO49-AAAA-1B31-0075-9384-0000", false, false},
      {"RO49AAAA1B31/007593840000", false, false},
      {"\tRO49AAAA1B31007593840000\r\n", false, true},  // only blanks are skipped, but the ends are trimmed
      {"RO49AAAA1B31007593840000\0"sv, false, true},
      {"RO49AAAA\0001B31007593840000"sv, false, false},
      {"GB82 WEST 1234 5698 7654 32", true, true},
      {"MT84MALT011000012345MTLCAST001S", true, true},
      {"", false, false},
      {"IBAN", false, false},
      {" 1 ", false, false},  // fewer than five characters follow the rearranging to the letter
      {"01", false, false},
      {"A01", true, true},
      {"101", true, false},
      {"\0001 "sv, false, false},
      {"?0 1", true, false},
      {"IBAN-01", true, true},
      {"0001", true, false},
      {"49AAAA1B31007593840000RO", false, false},
  };
  for (const auto& [text, valid, iban] : kCases) {
    EXPECT_EQ(ValideazaIBAN(text), valid) << text;
    EXPECT_EQ(plain::ValideazaIBAN(text), valid) << text;
    EXPECT_EQ(EsteIBAN(text), iban) << text;
  }
}

/// An account number of any length with a right check number, so that verdicts of both kinds are met.
Text RandomAccount(std::mt19937& random) {
  Text text;
  const std::size_t length = random() % 45;
  for (std::size_t i = 0; i < length; ++i) {
    text.push_back(random() % 3 == 0 ? "ABINZxyia"[random() % 9] : static_cast<char>('0' + random() % 10));
  }
  if (length >= 4) {
    const Text head = {text[0], text[1], '0', '0'};
    const std::int32_t check = 98 - plain::RestIBANModulo97(head + text.substr(4));
    text[2] = static_cast<char>('0' + check / 10);
    text[3] = static_cast<char>('0' + check % 10);
  }
  return text;
}

void Mutate(Text& text, std::mt19937& random) {
  static constexpr TextView kInserted[] = {" ", "  ", "IBAN", "iban", "I BaN", "IBA", "-", "\0"sv, "\xC1", "7", "q"};
  const std::size_t at = random() % (text.size() + 1);
  switch (random() % 4) {
    case 0:
      text.insert(at, kInserted[random() % std::size(kInserted)]);
      break;
    case 1:
      text.erase(at, random() % 3);
      break;
    case 2:
      text.insert(at, " ");
      break;
    default:
      if (at < text.size()) {
        text[at] = static_cast<char>(random());
      }
  }
}

TEST(Iban, OnePassAgreesWithThePiecewiseRule) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__)
  constexpr int kRounds = 200'000;  // the sanitizers' builds, which are slow
#else
  constexpr int kRounds = 300'000;
#endif
  std::mt19937 random(97);
  int accepted = 0;
  for (int i = 0; i < kRounds; ++i) {
    Text text = RandomAccount(random);
    for (std::uint32_t mutations = random() % 4; mutations > 0; --mutations) {
      Mutate(text, random);
    }
    const bool expected = plain::ValideazaIBAN(text);
    ASSERT_EQ(ValideazaIBAN(text), expected) << '"' << text << '"';
    accepted += expected ? 1 : 0;
  }
  EXPECT_GT(accepted, kRounds / 4);  // both verdicts have been compared in earnest
  EXPECT_LT(accepted, kRounds * 3 / 4);
}

TEST(Iban, CleaningHelpers) {
  const struct {
    TextView text, withoutAnalytic, withoutCodes;
  } kCases[] = {
      {"RO49AAAA1B31007593840000-01", "RO49AAAA1B31007593840000", "AAAA1B31007593840000-01"},
      {" RO49 AAAA.1B31-5 ", "RO49 AAAA", "AAAA.1B31-5"},
      {"RO49 AAAA 1B31", "RO49 AAAA 1B31", "AAAA 1B31"},
      {"\t R O 4 9  A A\n", "R O 4 9  A A", "9  A A"},  // a tab is no blank: it is the first of the four
      {"-RO49", "", "9"},
      {"RO4", "RO4", ""},
      {"", "", ""},
  };
  for (const auto& [text, withoutAnalytic, withoutCodes] : kCases) {
    EXPECT_EQ(ExtrageIBANdinIBANCuAnalitic(text), withoutAnalytic) << text;
    EXPECT_EQ(EliminaCoduriDinIBAN(text), withoutCodes) << text;
  }
}

// Hosts rely on the rule as it is: no further "mod 10" after 11 - sum mod 10, so 0 and 1 are never right in the end,
// and digits of products are summed.
TEST(Siruta, EveryCodeOfSixDigits) {
  int valid = 0;
  for (int code = 0; code < 1'000'000; ++code) {
    Text text = std::to_string(code);
    if (code % 2 == 0) {
      text.insert(0, 6 - text.size(), '0');
    }
    const bool passes = ValideazaSIRUTA(text);
    ASSERT_EQ(passes, plain::ValideazaSIRUTA(text)) << text;
    ASSERT_FALSE(passes && code % 10 < 2) << text;
    valid += passes ? 1 : 0;
  }
  EXPECT_EQ(valid, 80'000);  // two in ten sums give no check digit at all
}

TEST(Siruta, KnownVerdictsAndRefusals) {
  const struct {
    TextView code;
    int answer;
  } kCases[] = {
      {"179132", 1},  {"54975", 1},   {"1017", 1},   {"54976", 0}, {"", 0},          {"1791320", 1}, {"179132x", 1},
      {"17913x", -2}, {"+17913", -2}, {" 1017", -2}, {"\0"sv, -2}, {"17\xB9"sv, -2}, {"-", -2},      {"x1791", -2},
  };
  for (const auto& [code, answer] : kCases) {
    if (answer < 0) {
      EXPECT_THROW(std::ignore = ValideazaSIRUTA(code), ConversionError) << code;
    } else {
      EXPECT_EQ(ValideazaSIRUTA(code), answer == 1) << code;
    }
  }
  ExpectError<ConversionError>([] { return ValideazaSIRUTA("17A132"); }, "\"A\" nu este un numar intreg");
}

}  // namespace
}  // namespace kiv
