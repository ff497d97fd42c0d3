#include "platform/Random.h"

#include <atomic>
#include <chrono>

namespace kiv::platform {
namespace {

/// The next place in a series of well mixed numbers is the one before it and this, so that threads may share it.
constexpr std::uint32_t kStep = 0x9E3779B9U;

class SharedRandom final : public Random {
 public:
  void Restart() override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const auto ticks = static_cast<std::uint64_t>(now);
    // Added to the place where the last series ended: two within one tick differ as well.
    place_.fetch_add(Mixed(static_cast<std::uint32_t>(ticks) ^ Mixed(static_cast<std::uint32_t>(ticks >> 32U))),
                     std::memory_order_relaxed);
  }

  std::uint32_t Below(std::uint32_t count) override {
    const std::uint32_t number = Mixed(place_.fetch_add(kStep, std::memory_order_relaxed));
    return static_cast<std::uint32_t>(std::uint64_t{number} * count >> 32U);
  }

 private:
  static std::uint32_t Mixed(std::uint32_t bits) noexcept {
    bits = (bits ^ bits >> 16U) * 0x21F0AAADU;
    bits = (bits ^ bits >> 15U) * 0x735A2D97U;
    return bits ^ bits >> 15U;
  }

  std::atomic<std::uint32_t> place_{0};
};

}  // namespace

constinit Service<Random> random_service(&ClockSeededRandom);

Random& ClockSeededRandom() noexcept {
  static SharedRandom random;
  return random;
}

}  // namespace kiv::platform
