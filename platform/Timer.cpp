#include "platform/Timer.h"

#include <thread>

namespace kiv::platform {
namespace {

class SteadyTimer : public Timer {
 public:
  [[nodiscard]] std::chrono::milliseconds Now() const override {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
  }
  void Sleep(std::chrono::milliseconds duration) const override { std::this_thread::sleep_for(duration); }
};

}  // namespace

const Timer& SystemTimer() noexcept {
  static const SteadyTimer timer;
  return timer;
}

constinit Service<const Timer> timer_service(&SystemTimer);

}  // namespace kiv::platform
