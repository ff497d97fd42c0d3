#include "platform/Clock.h"

#include <ctime>

namespace kiv::platform {
namespace {

class LocalClock final : public Clock {
 public:
  [[nodiscard]] DateTime Now() const override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    return ClockReading(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                        local.tm_sec, static_cast<int>(now.tv_nsec / 1'000'000));
  }
};

}  // namespace

const Clock& SystemClock() noexcept {
  static const LocalClock clock;
  return clock;
}

}  // namespace kiv::platform
