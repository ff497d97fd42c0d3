#include "platform/Clock.h"

#include <algorithm>

namespace kiv::platform {

DateTime ClockReading(int year, int month, int day, int hour, int minute, int second, int millisecond) {
  return DateTime::Encode(year, month, day, hour, minute, std::min(second, 59), millisecond);
}

constinit Service<const Clock> clock_service(&SystemClock);

}  // namespace kiv::platform
