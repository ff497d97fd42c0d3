#pragma once

#include <cstdint>
#include <utility>

#include "platform/SystemError.h"

namespace kiv::platform {

/// Gives a handle back to the system: `close` on POSIX, `CloseHandle` on Windows. Never repeated: after a failure the
/// number may be another one's already. What the failure tells of is data that could not be written.
SystemStatus CloseSystemHandle(std::intptr_t handle) noexcept;

/// The one owner of a handle of the system; closes it. `kNone` is the value that stands for no handle, which differs
/// from one kind of handle to the next.
template <std::intptr_t kNone>
class OwnedHandle {
 public:
  OwnedHandle() noexcept = default;
  explicit OwnedHandle(std::intptr_t handle) noexcept : handle_(handle) {}
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~OwnedHandle() { static_cast<void>(Close()); }

  [[nodiscard]] bool IsOpen() const noexcept { return handle_ != kNone; }
  [[nodiscard]] std::intptr_t Get() const noexcept { return handle_; }

  /// Closes now, for whoever needs to know whether it went well; closing nothing does.
  SystemStatus Close() noexcept { return IsOpen() ? CloseSystemHandle(std::exchange(handle_, kNone)) : SystemStatus(); }

 private:
  std::intptr_t handle_ = kNone;
};

/// Files and folders.
using FileHandle = OwnedHandle<-1>;
/// What else Windows gives: processes, tokens, events.
using KernelHandle = OwnedHandle<0>;

}  // namespace kiv::platform
