#include "kivtools/DateTime.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "core/Calendar.h"
#include "kivtools/Errors.h"

namespace kiv {
namespace {

constexpr auto kDayZero = std::chrono::sys_days{std::chrono::December / 30 / 1899};
static_assert(std::chrono::sys_days{std::chrono::January / 1 / 1} == kDayZero + std::chrono::days{kFirstDayNumber});
static_assert(std::chrono::sys_days{std::chrono::December / 31 / 9999} == kDayZero + std::chrono::days{kLastDayNumber});

/// The milliseconds of a fraction of a day in [0, 1), rounded to the nearest, halves up. Integer arithmetic, because
/// the product in floating point could itself round a value just below the half up to it.
std::int32_t RoundToMilliseconds(double fraction) {
  // n / 2^63 is the fraction; the product n * kMillisecondsPerDay + 2^62 is formed from two 32-bit halves of n.
  const auto n = static_cast<std::uint64_t>(std::ldexp(fraction, 63));
  const std::uint64_t high = (n >> 32U) * kMillisecondsPerDay;
  const std::uint64_t low = (n & 0xFFFFFFFFU) * kMillisecondsPerDay + (std::uint64_t{1} << 62U);
  return static_cast<std::int32_t>((high + (low >> 32U)) >> 31U);
}

[[noreturn]] void RefuseDay(double days) {
  std::array<char, 96> message{};
  std::snprintf(message.data(), message.size(), "DateTime: ziua %.17g nu este in anii 1..9999", days);
  throw DateEncodingError(message.data());
}

}  // namespace

DateTime DateTime::Encode(int year, int month, int day, int hour, int minute, int second, int millisecond) {
  const auto inRange = [](int value, int low, int high) { return value >= low && value <= high; };
  const bool dateFits = inRange(year, 1, 9999) && inRange(month, 1, 12) && inRange(day, 1, 31);
  const std::chrono::year_month_day date{std::chrono::year{dateFits ? year : 1},
                                         std::chrono::month{dateFits ? static_cast<unsigned>(month) : 1},
                                         std::chrono::day{dateFits ? static_cast<unsigned>(day) : 1}};
  if (!dateFits || !date.ok() || !inRange(hour, 0, 23) || !inRange(minute, 0, 59) || !inRange(second, 0, 59) ||
      !inRange(millisecond, 0, 999)) {
    std::array<char, 160> message{};
    std::snprintf(message.data(), message.size(),
                  "DateTime::Encode: data %d.%d.%d, ora %d:%d:%d.%d nu exista in calendar", day, month, year, hour,
                  minute, second, millisecond);
    throw DateEncodingError(message.data());
  }
  const auto dayNumber = (std::chrono::sys_days{date} - kDayZero).count();
  const std::int32_t timeOfDay = ((hour * 60 + minute) * 60 + second) * 1000 + millisecond;
  const double fraction = static_cast<double>(timeOfDay) / kMillisecondsPerDay;
  return DateTime(static_cast<double>(dayNumber) + (dayNumber < 0 ? -fraction : fraction));
}

std::int64_t MillisecondsOf(DateTime moment) {
  const double days = moment.Days();
  const double wholeDays = std::trunc(days);
  // The negated comparison also refuses not-a-number. Beyond these bounds the day would not fit an integer.
  if (!(std::abs(wholeDays) < 4'000'000)) {
    RefuseDay(days);
  }
  const std::int64_t milliseconds =
      static_cast<std::int64_t>(wholeDays) * kMillisecondsPerDay + RoundToMilliseconds(std::abs(days - wholeDays));
  if (milliseconds < std::int64_t{kFirstDayNumber} * kMillisecondsPerDay ||
      milliseconds >= (std::int64_t{kLastDayNumber} + 1) * kMillisecondsPerDay) {
    RefuseDay(days);
  }
  return milliseconds;
}

DateTime MomentOf(std::int64_t milliseconds) noexcept {
  const std::int64_t timeOfDay = (milliseconds % kMillisecondsPerDay + kMillisecondsPerDay) % kMillisecondsPerDay;
  const std::int64_t day = (milliseconds - timeOfDay) / kMillisecondsPerDay;
  const double fraction = static_cast<double>(timeOfDay) / kMillisecondsPerDay;
  return DateTime(static_cast<double>(day) + (day < 0 ? -fraction : fraction));
}

DateTime::Parts DateTime::Decode() const {
  const std::int64_t milliseconds = MillisecondsOf(*this);
  const auto timeOfDay =
      static_cast<std::int32_t>((milliseconds % kMillisecondsPerDay + kMillisecondsPerDay) % kMillisecondsPerDay);
  const auto day = static_cast<std::int32_t>((milliseconds - timeOfDay) / kMillisecondsPerDay);
  const auto date = kDayZero + std::chrono::days{day};
  const std::chrono::year_month_day calendar{date};
  return {static_cast<int>(calendar.year()),
          static_cast<int>(static_cast<unsigned>(calendar.month())),
          static_cast<int>(static_cast<unsigned>(calendar.day())),
          timeOfDay / 3'600'000,
          timeOfDay / 60'000 % 60,
          timeOfDay / 1000 % 60,
          timeOfDay % 1000,
          static_cast<int>(std::chrono::weekday{date}.c_encoding()) + 1};
}

}  // namespace kiv
