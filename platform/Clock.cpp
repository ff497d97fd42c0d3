#include "platform/Clock.h"

#include <atomic>

namespace kiv::platform {
namespace {

/// Null stands for the system's, so that the library reads the time correctly before any constructor has run.
std::atomic<const Clock*> clock_in_use{nullptr};

}  // namespace

const Clock& CurrentClock() noexcept {
  const Clock* const clock = clock_in_use.load();
  return clock != nullptr ? *clock : SystemClock();
}

ClockInUse::ClockInUse(const Clock& clock) noexcept : previous_(clock_in_use.exchange(&clock)) {}

ClockInUse::~ClockInUse() {
  clock_in_use.store(previous_);
}

}  // namespace kiv::platform
