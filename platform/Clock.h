#pragma once

#include "kivtools/DateTime.h"

namespace kiv::platform {

/// Where the library reads the time.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The local date and time, to the millisecond.
  [[nodiscard]] virtual DateTime Now() const = 0;
};

/// The system's clock in the system's time zone.
const Clock& SystemClock() noexcept;

/// The clock that everything in the library reads: the system's, unless another one is in use.
const Clock& CurrentClock() noexcept;

/// Puts another clock in use for the whole process while this object lives; for tests. Not for several threads at a
/// time.
class ClockInUse {
 public:
  explicit ClockInUse(const Clock& clock) noexcept;
  ~ClockInUse();
  ClockInUse(const ClockInUse&) = delete;
  ClockInUse& operator=(const ClockInUse&) = delete;

 private:
  const Clock* previous_;
};

}  // namespace kiv::platform
