#include "platform/Clock.h"

#include <windows.h>

namespace kiv::platform {
namespace {

class LocalClock final : public Clock {
 public:
  [[nodiscard]] DateTime Now() const override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return ClockReading(now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
  }
};

}  // namespace

const Clock& SystemClock() noexcept {
  static const LocalClock clock;
  return clock;
}

}  // namespace kiv::platform
