#pragma once

#include <cstdint>

#include "core/Service.h"

namespace kiv::platform {

/// Where the library takes random numbers from that only have to look random.
class Random {
 public:
  virtual ~Random() = default;

  /// Begins a series that differs from those before it.
  virtual void Restart() = 0;
  /// A number from 0 to `count` - 1, all equally likely.
  [[nodiscard]] virtual std::uint32_t Below(std::uint32_t count) = 0;
};

/// A generator that starts from the clock. Its numbers may be drawn from any thread.
Random& ClockSeededRandom() noexcept;

/// The generator that the library draws from: the clock-seeded one, unless another one is in use.
extern constinit Service<Random> random_service;

}  // namespace kiv::platform
