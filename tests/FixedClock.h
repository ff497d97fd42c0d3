#pragma once

#include "platform/Clock.h"

namespace kiv {

/// The library's clock while this object lives; it shows what the test sets.
class FixedClock : public platform::Clock {
 public:
  explicit FixedClock(DateTime now) : now_(now) {}

  [[nodiscard]] DateTime Now() const override { return now_; }
  void Set(DateTime now) { now_ = now; }

 private:
  DateTime now_;
  Replacement<const platform::Clock> inUse_{platform::clock_service, *this};
};

}  // namespace kiv
