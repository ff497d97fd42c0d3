// Pure operations are safe from any thread: each gives in eight threads at once what it gives in one. Built with the
// thread sanitizer as well, which sees what equal results do not show.
#include <gtest/gtest.h>

#include <array>
#include <latch>
#include <random>
#include <thread>
#include <vector>

#include "kivtools/DateTime.h"
#include "kivtools/Types.h"
#include "kivtools/kiv.h"

namespace kiv {
namespace {

using PureOperation = Text (*)(std::uint32_t number);

Text OfDate(std::uint32_t number) {
  const DateTime::Parts parts = DateTime(static_cast<double>(number % 2'900'000) + 0.4).Decode();
  const DateTime again = DateTime::Encode(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second);
  return std::to_string(again.Days());
}

Text RandomText(std::uint32_t number) {
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

constexpr PureOperation kOperations[] = {
    OfDate,
    OfRefusal,
    [](std::uint32_t number) { return FromUtf8(ToUtf8(RandomText(number), DiacriticForm::CommaBelow)); },
    [](std::uint32_t number) { return ToUtf8(RandomText(number)); },
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
