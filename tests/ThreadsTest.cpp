// Pure operations are safe from any thread: each gives in eight threads at once what it gives in one. Built with the
// thread sanitizer as well, which sees what equal results do not show.
#include <gtest/gtest.h>

#include <array>
#include <latch>
#include <random>
#include <thread>
#include <vector>

#include "kivtools/CEVersionInfo.h"
#include "kivtools/DateTime.h"
#include "kivtools/Types.h"
#include "kivtools/WideTools.h"
#include "kivtools/WinUtil.h"
#include "kivtools/kiv.h"

namespace kiv {
namespace {

using PureOperation = Text (*)(std::uint32_t number);

DateTime DateOf(std::uint32_t number) {
  return DateTime(static_cast<double>(number % 2'900'000) + static_cast<double>(number % 86'400) / 86'400);
}

Currency AmountOf(std::uint32_t number) {
  return Currency::FromRaw(std::int64_t{number} * (std::int64_t{number % 1999} - 999));
}

Text TextOf(std::uint32_t number) {
  Text text;
  for (std::mt19937 random(number); text.size() < 20;) {
    text.push_back(static_cast<char>(random() % 255 + 1));
  }
  return text;
}

/// The message of a failed call is each thread's own.
Text OfRefusal(std::uint32_t number) {
  const std::string utf8 = std::string(number % 50, 'a') + "漢";
  std::array<char, 128> message{};
  EXPECT_EQ(KivUtf8ToText(utf8.data(), utf8.size(), nullptr, 0), -KIV_ERROR_CONVERSION);
  EXPECT_GT(KivLastErrorMessage(message.data(), message.size()), 0);
  return message.data();
}

/// Every form of a date: the month names that they share are read by all threads.
Text OfDate(std::uint32_t number) {
  const DateTime date = DateOf(number);
  Text all;
  for (const auto form : {DateToRoText, DateToRoText2, DateToRoText3, DateToRoText4, DateToRoText5, DateToRoText6,
                          DateToRoText7, DateToRoCode, DateToRoTextScurt, DateToRoTextScurtCuAn,
                          DateToRoTextScurtCuAnPlusOra, NumeZiDinSaptamana, TimeToStrRoFrumos, TimeToStrRo2}) {
    all += form(date) + '|';
  }
  return all;
}

constexpr PureOperation kOperations[] = {
    OfDate,
    OfRefusal,
    [](std::uint32_t number) { return FromUtf8(ToUtf8(TextOf(number), DiacriticForm::CommaBelow)); },
    [](std::uint32_t number) { return ToUtf8(TextOf(number)); },
    [](std::uint32_t number) { return InLitere(std::int64_t{number % 1'000'000'000}); },
    [](std::uint32_t number) { return InLitere(Currency::FromRaw(number)) + InLitereMF(Currency::FromRaw(number)); },
    [](std::uint32_t number) { return CurrencyToRoStr(AmountOf(number), 2) + CurrencyToRoStrRON(AmountOf(number), 2); },
    [](std::uint32_t number) {
      const Currency again = RoStrToCurrency(CurrencyToRoStr(AmountOf(number), 4));
      return std::to_string(again.Raw());
    },
    [](std::uint32_t number) {
      const DateTime date = DateOf(number);
      const DateTime::Parts parts = date.Decode();
      return std::to_string(DateTime::Encode(parts.year, parts.month, parts.day, parts.hour, parts.minute).Days()) +
             std::to_string(RoCodeToDate(DateToRoCode(date)).Days());
    },
    [](std::uint32_t number) { return TextDeLatimeFixa(PadLeft(TextOf(number), 30, '.'), 25, "-"); },
    [](std::uint32_t number) { return TextDinGhilimele(TextInGhilimele(TextOf(number))); },
    [](std::uint32_t number) { return ScrieFoarteFrumos(number, 42); },
    [](std::uint32_t number) {
      StringList pieces = Explode("abc", TextOf(number), 5);
      SplitTextOnSeparator(TextOf(number), "efg", pieces);
      return pieces.back() + StringHash(TextOf(number)) + RemoveDualSlshPath(TextOf(number));
    },
    [](std::uint32_t number) { return std::to_string(SmartRoundTo(number / 8.0, -2)); },
    [](std::uint32_t number) { return std::to_string(CompareNrVersiune(std::to_string(number), "7.1")); },
    [](std::uint32_t number) { return NamedFileVersionInfo("no file " + std::to_string(number)); },
};

TEST(Threads, PureOperationsGiveInEightThreadsWhatTheyGiveInOne) {
  constexpr std::size_t kThreads = 8;
  constexpr std::size_t kCalls = 500;
  std::mt19937 random(8);  // fixed, so that a failure repeats
  std::vector<std::uint32_t> numbers(kCalls);
  for (std::uint32_t& number : numbers) {
    number = static_cast<std::uint32_t>(random());
  }
  std::vector<std::vector<Text>> expected;
  for (const PureOperation operation : kOperations) {
    auto& results = expected.emplace_back();
    for (const std::uint32_t number : numbers) {
      results.push_back(operation(number));
    }
  }

  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (std::size_t call = 0; call < kCalls; ++call) {
        for (std::size_t i = 0; i < std::size(kOperations); ++i) {
          const std::size_t chosen = (i + thread) % std::size(kOperations);  // different operations meet
          ASSERT_EQ(kOperations[chosen](numbers[call]), expected[chosen][call]) << chosen << ' ' << numbers[call];
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace
}  // namespace kiv
