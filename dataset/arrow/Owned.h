#pragma once

#include <utility>

#include "kivtools/dataset/ArrowData.h"

namespace kiv::arrow {

/// A struct of the interface, released when it goes.
template <class Struct>
class Owned {
 public:
  Owned() = default;
  /// Takes it over: the other one is released as far as its holder sees.
  explicit Owned(Struct& from) noexcept : held_(std::exchange(from, Struct{})) {}
  Owned(Owned&& other) noexcept : Owned(other.held_) {}
  Owned& operator=(Owned&& other) noexcept {
    std::swap(held_, other.held_);
    return *this;
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (held_.release != nullptr) {
      held_.release(&held_);
    }
  }

  [[nodiscard]] Struct* Get() noexcept { return &held_; }
  [[nodiscard]] const Struct& operator*() const noexcept { return held_; }
  [[nodiscard]] Struct* operator->() noexcept { return &held_; }
  [[nodiscard]] const Struct* operator->() const noexcept { return &held_; }
  /// Hands it over.
  [[nodiscard]] Struct Release() noexcept { return std::exchange(held_, Struct{}); }

 private:
  Struct held_{};
};

using OwnedSchema = Owned<ArrowSchema>;
using OwnedArray = Owned<ArrowArray>;
using OwnedStream = Owned<ArrowArrayStream>;

}  // namespace kiv::arrow
