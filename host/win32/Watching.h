#pragma once

#include <windows.h>

#include <map>

#include "kivtools/Host.h"
#include "kivtools/Host/Win32.h"

namespace kiv::host::win32 {

/// Stands before the procedures of the windows that have a control.
class Watching {
 public:
  /// From now on the control hears of its window's changes; see WatchedWindow for what is refused.
  static void Begin(WatchedWindow& watched);
  static void End(const WatchedWindow& watched) noexcept;
  /// The control of a window, null where it has none.
  static WatchedWindow* Of(HWND window) noexcept;

 private:
  struct Link {
    WNDPROC before = nullptr;
    WatchedWindow* watched = nullptr;
  };
  static std::map<HWND, Link>& Links();
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM large);
};

}  // namespace kiv::host::win32
