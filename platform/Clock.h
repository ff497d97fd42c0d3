#pragma once

#include "core/Service.h"
#include "kivtools/DateTime.h"
#include "platform/Files.h"

namespace kiv::platform {

/// Where the library reads the time.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The local date and time, to the millisecond.
  [[nodiscard]] virtual DateTime Now() const = 0;
};

/// A date and time as a system's clock reads. A leap second, which both systems may call the minute's 61st, is shown as
/// the second before it: DateTime has sixty.
DateTime ClockReading(int year, int month, int day, int hour, int minute, int second, int millisecond);

/// The system's clock in the system's time zone.
const Clock& SystemClock() noexcept;

/// A moment of the system's clock of files as the local date and time, to the millisecond. Throws DateEncodingError
/// outside the years 1 to 9999.
DateTime LocalTimeOf(FileTime time);

/// The clock that everything in the library reads: the system's, unless another one is in use.
extern constinit Service<const Clock> clock_service;

}  // namespace kiv::platform
