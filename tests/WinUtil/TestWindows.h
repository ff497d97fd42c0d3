#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "kivtools/Host/Geometry.h"
#include "kivtools/Types.h"

namespace kiv {

/// Windows of this thread, for tests of what watches and operates them from another one: on Windows the system's own,
/// elsewhere a model of them that the library is given for the system's.
class TestWindows {
 public:
  TestWindows();
  ~TestWindows();
  TestWindows(const TestWindows&) = delete;
  TestWindows& operator=(const TestWindows&) = delete;

  /// A window of that class with that text (Windows-1250): in a parent, or beside all others and perhaps owned.
  Handle Make(TextView className, TextView text, Handle parent);
  Handle MakeDialog(TextView caption, Handle owner = 0);
  void Destroy(Handle window);
  void SetText(Handle window, TextView text);
  [[nodiscard]] Text TextOf(Handle window) const;
  [[nodiscard]] host::Rect BoundsOf(Handle window) const;
  void BringToFront(Handle window);

  /// Serves what waits for the windows.
  void Serve();
  /// The buttons that were pressed since the last call.
  std::vector<Handle> TakeClicks();
  /// Answers nobody for a while.
  void Hang(std::chrono::milliseconds duration);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kiv
