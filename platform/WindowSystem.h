#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "core/Service.h"
#include "kivtools/Types.h"

namespace kiv::platform {

/// The windows that one thread has made, for another thread that watches and operates them. Their texts are
/// Windows-1250, except that 0xBD is the one half of a Western system as well.
class ThreadWindows {
 public:
  ThreadWindows() = default;
  /// On the thread whose windows they are, when nobody operates them any more.
  virtual ~ThreadWindows() = default;
  ThreadWindows(const ThreadWindows&) = delete;
  ThreadWindows& operator=(const ThreadWindows&) = delete;

  /// Those without a parent, each before the dialogs that it owns.
  [[nodiscard]] virtual std::vector<Handle> TopLevel() const = 0;
  /// Those that lie directly in a window.
  [[nodiscard]] virtual std::vector<Handle> Children(Handle window) const = 0;
  /// Example: "Button".
  [[nodiscard]] virtual Text ClassOf(Handle window) const = 0;
  /// Nothing where the window's thread does not give it in that time.
  [[nodiscard]] virtual std::optional<Text> TextOf(Handle window, std::chrono::milliseconds limit) = 0;
  virtual void SetText(Handle window, TextView text) = 0;
  /// In pixels; its left upper corner stays where it is.
  virtual void Resize(Handle window, std::int32_t width, std::int32_t height) = 0;
  /// Presses and releases the left mouse button on it, without waiting for what comes of it.
  virtual void Click(Handle window) = 0;
  /// The window that the user works in, 0 for none; it may be anybody's.
  [[nodiscard]] virtual Handle Foreground() const = 0;

  /// On the thread whose windows they are: answers those threads that wait for an answer of its windows.
  virtual void AnswerOthers() = 0;
};

/// Where the windows of threads come from. The built-in one on POSIX has none.
class WindowSystem {
 public:
  WindowSystem() = default;
  virtual ~WindowSystem() = default;
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;

  /// Those of the calling thread. Throws OsError (not supported) with the operation where the system has no windows.
  [[nodiscard]] virtual std::unique_ptr<ThreadWindows> OfThisThread(TextView operation) const;
};

extern constinit Service<const WindowSystem> window_system_service;

}  // namespace kiv::platform
