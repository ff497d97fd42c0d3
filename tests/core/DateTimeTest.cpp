#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <tuple>

#include "Expect.h"
#include "kivtools/DateTime.h"
#include "kivtools/Errors.h"

namespace kiv {
namespace {

auto AsTuple(const DateTime::Parts& parts) {
  return std::tuple(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second, parts.millisecond,
                    parts.dayOfWeek);
}

TEST(DateTime, DecodesAcrossDayZeroAndCarries) {
  const double kAlmostDay = 1 - 0.4 / 86'400'000;
  const struct {
    double days;
    std::tuple<int, int, int, int, int, int, int, int> parts;
  } kCases[] = {
      {0, {1899, 12, 30, 0, 0, 0, 0, 7}},
      {-1.25, {1899, 12, 29, 6, 0, 0, 0, 6}},
      {-0.25, {1899, 12, 30, 6, 0, 0, 0, 7}},
      {45356.5, {2024, 3, 5, 12, 0, 0, 0, 3}},
      {45350 + kAlmostDay, {2024, 2, 29, 0, 0, 0, 0, 5}},  // rounds up into the next day
      {-1 - kAlmostDay, {1899, 12, 30, 0, 0, 0, 0, 7}},    // the same before day zero
      {1.0 / 2048, {1899, 12, 30, 0, 0, 42, 188, 7}},      // exactly 42187.5 ms: a half rounds up
      {std::nextafter(1.0 / 2048, 0), {1899, 12, 30, 0, 0, 42, 187, 7}},
      {-693593, {1, 1, 1, 0, 0, 0, 0, 2}},
      {2958465.5, {9999, 12, 31, 12, 0, 0, 0, 6}},
  };
  for (const auto& [days, parts] : kCases) {
    EXPECT_EQ(AsTuple(DateTime(days).Decode()), parts) << days;
  }
}

TEST(DateTime, EveryDayAndRandomTimesRoundTrip) {
  std::mt19937 random(20'241'109);  // fixed, so that a failure repeats
  int weekday = 2;                  // 1 January of year 1 is a Monday
  for (int day = -693'593; day <= 2'958'465; ++day, weekday = weekday % 7 + 1) {
    const DateTime::Parts date = DateTime(day).Decode();
    const int hour = static_cast<int>(random() % 24);
    const int minute = static_cast<int>(random() % 60);
    const int second = static_cast<int>(random() % 60);
    const int millisecond = static_cast<int>(random() % 1000);
    const DateTime encoded = DateTime::Encode(date.year, date.month, date.day, hour, minute, second, millisecond);
    ASSERT_EQ(std::trunc(encoded.Days()), day);
    ASSERT_EQ(AsTuple(encoded.Decode()),
              std::tuple(date.year, date.month, date.day, hour, minute, second, millisecond, weekday));
  }
}

TEST(DateTime, RefusesWhatTheCalendarLacks) {
  const struct {
    int year, month, day, hour, second;
  } kCases[] = {{2023, 2, 29, 0, 0},  {0, 1, 1, 0, 0},     {10000, 1, 1, 0, 0}, {2024, 258, 1, 0, 0},
                {2024, 1, 257, 0, 0}, {2024, 1, 1, 24, 0}, {2024, 1, 1, 0, -1}};  // 258 would be February in a byte
  for (const auto& [year, month, day, hour, second] : kCases) {
    std::ostringstream message;
    message << "DateTime::Encode: data " << day << '.' << month << '.' << year << ", ora " << hour << ":5:" << second
            << ".7 nu exista in calendar";
    const auto date = std::tuple(year, month, day, hour, 5, second, 7);
    ExpectError<DateEncodingError>([&] { std::ignore = std::apply(DateTime::Encode, date); }, message.str());
  }
  ExpectError<DateEncodingError>([] { std::ignore = DateTime(-693594).Decode(); },
                                 "DateTime: ziua -693594 nu este in anii 1..9999");
  for (const double days : {-693594.0, 2958466.0, 2958465 + (1 - 1e-10), 1e300, -1e300,
                            std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW(std::ignore = DateTime(days).Decode(), DateEncodingError) << days;
  }
}

}  // namespace
}  // namespace kiv
