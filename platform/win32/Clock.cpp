#include "platform/Clock.h"

#include <windows.h>

#include "platform/win32/Nt.h"

namespace kiv::platform {
namespace {

DateTime MomentOf(const SYSTEMTIME& local) {
  return ClockReading(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond,
                      local.wMilliseconds);
}

class LocalClock final : public Clock {
 public:
  [[nodiscard]] DateTime Now() const override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return MomentOf(now);
  }
};

}  // namespace

DateTime LocalTimeOf(FileTime time) {
  const FILETIME moment = SystemFileTime(time);
  SYSTEMTIME universal{};
  SYSTEMTIME local{};  // where the system cannot tell, day 0 of month 0: refused below
  if (FileTimeToSystemTime(&moment, &universal) != 0) {
    SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
  }
  return MomentOf(local);
}

const Clock& SystemClock() noexcept {
  static const LocalClock clock;
  return clock;
}

}  // namespace kiv::platform
