#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/SystemCalls.h"

namespace kiv {

/// While this object lives, the system call number `failing` (from 0) of those that pass the gate fails with `code`.
class FailingCalls : public platform::SystemCallGate {
 public:
  static constexpr std::size_t kNone = SIZE_MAX;

  explicit FailingCalls(std::size_t failing, std::int32_t code = 5) : failing_(failing), code_(code) {}

  platform::SystemStatus Before(platform::SystemCall call) noexcept override {
    seen_.push_back(call);
    return platform::SystemStatus(seen_.size() == failing_ + 1 ? code_ : 0);
  }

  /// The calls so far, with the one that failed.
  [[nodiscard]] const std::vector<platform::SystemCall>& Seen() const { return seen_; }
  [[nodiscard]] bool Failed() const { return seen_.size() > failing_; }

 private:
  std::size_t failing_;
  std::int32_t code_;
  std::vector<platform::SystemCall> seen_;
  Replacement<platform::SystemCallGate> inUse_{platform::system_call_service, *this};
};

}  // namespace kiv
