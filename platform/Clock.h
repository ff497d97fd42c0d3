#pragma once

#include "core/Service.h"
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
extern constinit Service<const Clock> clock_service;

}  // namespace kiv::platform
