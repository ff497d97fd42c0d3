#include "platform/Clock.h"

#include <ctime>

namespace kiv::platform {
namespace {

class LocalClock final : public Clock {
 public:
  [[nodiscard]] DateTime Now() const override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return LocalTimeOf({now.tv_sec, static_cast<std::int32_t>(now.tv_nsec)});
  }
};

}  // namespace

DateTime LocalTimeOf(FileTime time) {
  const std::time_t seconds = time.seconds;
  tm local{};
  localtime_r(&seconds, &local);  // what it cannot tell is month 1 of 1900, day 0: refused below
  return ClockReading(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                      time.nanoseconds / 1'000'000);
}

const Clock& SystemClock() noexcept {
  static const LocalClock clock;
  return clock;
}

}  // namespace kiv::platform
