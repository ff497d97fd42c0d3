#pragma once

#include <chrono>

#include "core/Service.h"

namespace kiv::platform {

/// What measures how long something takes and lets a thread wait; setting the system's date does not change it. May be
/// used from any thread.
class Timer {
 public:
  virtual ~Timer() = default;

  /// The time since some moment in the past.
  [[nodiscard]] virtual std::chrono::milliseconds Now() const = 0;
  /// Lets the calling thread sleep at least so long.
  virtual void Sleep(std::chrono::milliseconds duration) const = 0;
};

/// The system's.
const Timer& SystemTimer() noexcept;

/// The timer that everything in the library waits by: the system's, unless another one is in use.
extern constinit Service<const Timer> timer_service;

}  // namespace kiv::platform
