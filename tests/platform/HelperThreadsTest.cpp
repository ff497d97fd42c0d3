#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "Expect.h"
#include "platform/FailingCalls.h"
#include "platform/HelperThreads.h"
#include "platform/Timer.h"

namespace kiv::platform {
namespace {

using namespace std::chrono_literals;

template <class Condition>
bool Soon(Condition condition) {
  for (int attempt = 0; attempt < 5'000 && !condition(); ++attempt) {
    std::this_thread::sleep_for(1ms);
  }
  return condition();
}

TEST(HelperThreads, RunTheirWorkAndFreeIt) {
  const auto seen = std::make_shared<std::atomic<int>>(0);
  std::atomic<bool> elsewhere = false;
  const auto caller = std::this_thread::get_id();
  for (int i = 0; i < 20; ++i) {
    helper_threads.Current().Start("test", [seen, caller, &elsewhere] {
      elsewhere = std::this_thread::get_id() != caller;
      ++*seen;
    });
  }
  EXPECT_TRUE(Soon([&] { return *seen == 20 && seen.use_count() == 1; }));
  EXPECT_TRUE(elsewhere);
}

TEST(HelperThreads, GiveTheirWorkBackWhereTheSystemStartsNone) {
  const auto seen = std::make_shared<int>(0);
  const FailingCalls fails(0, 12);
  ExpectError<OsError>([&] { helper_threads.Current().Start("test", [seen] { ++*seen; }); }, "test: " + SystemText(12));
  EXPECT_EQ(*seen, 0);
  EXPECT_EQ(seen.use_count(), 1);
}

TEST(Timer, PassesWhileOneSleeps) {
  const Timer& timer = timer_service.Current();
  const auto start = timer.Now();
  timer.Sleep(20ms);
  EXPECT_GE(timer.Now() - start, 19ms);  // two cut milliseconds
}

}  // namespace
}  // namespace kiv::platform
