#include <gtest/gtest.h>

#include <ctime>

#include "FixedClock.h"
#include "platform/Clock.h"

namespace kiv {
namespace {

/// The C library's idea of the local time, in whole seconds.
DateTime LocalTime(std::time_t seconds) {
  const std::tm local = *std::localtime(&seconds);
  return DateTime::Encode(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                          local.tm_sec);
}

TEST(Clock, SystemClockTellsLocalTime) {
  const std::time_t before = std::time(nullptr);
  const DateTime now = platform::SystemClock().Now();
  // The second counter of the C library may lag behind the clock by one tick.
  EXPECT_GE(now, LocalTime(before - 1));
  EXPECT_LE(now, LocalTime(std::time(nullptr) + 2));
}

TEST(Clock, LeapSecondIsShownAsTheOneBefore) {
  for (const int second : {0, 58, 59, 60}) {
    EXPECT_EQ(platform::ClockReading(2016, 12, 31, 23, 59, second, 500),
              DateTime::Encode(2016, 12, 31, 23, 59, second == 60 ? 59 : second, 500));
  }
}

TEST(Clock, AnotherClockIsInUseWhileItLives) {
  EXPECT_EQ(&platform::clock_service.Current(), &platform::SystemClock());
  {
    const FixedClock outer(DateTime(1));
    {
      const FixedClock inner(DateTime(2));
      EXPECT_EQ(platform::clock_service.Current().Now(), DateTime(2));
    }
    EXPECT_EQ(platform::clock_service.Current().Now(), DateTime(1));
  }
  EXPECT_EQ(&platform::clock_service.Current(), &platform::SystemClock());
}

}  // namespace
}  // namespace kiv
