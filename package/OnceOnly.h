#pragma once

#include <cstdint>

#include "kivtools/Package.h"

namespace kiv {

/// The once-only rule, one counter for each unit: with nested initializations the unit's start-up body runs on the
/// first and its shut-down body on the last finalization only. `Unit` has the two bodies as static functions `StartUp`
/// and `ShutDown`; each unit is a type of its own and so has a counter of its own.
template <class Unit>
class OnceOnly {
 public:
  static void Initialize() {
    if (counter_-- != 0) {
      return;
    }
    try {
      Unit::StartUp();
    } catch (...) {
      ++counter_;  // not started, so that the next attempt runs the body again
      throw;
    }
  }

  static void Finalize() {
    if (++counter_ == 0) {
      Unit::ShutDown();
    }
  }

  static constexpr UnitEntry kEntry = {&Initialize, &Finalize};

 private:
  static inline std::int32_t counter_ = 0;
};

}  // namespace kiv
