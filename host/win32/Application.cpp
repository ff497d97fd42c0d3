#include <windows.h>

#include "host/win32/Services.h"

namespace kiv::host::win32 {
namespace {

const DWORD kLoadingThread = GetCurrentThreadId();

BOOL CALLBACK IsMainWindow(HWND window, LPARAM found) {
  const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
  if ((style & WS_VISIBLE) == 0 || (style & WS_CAPTION) != WS_CAPTION || GetWindow(window, GW_OWNER) != nullptr) {
    return TRUE;
  }
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

}  // namespace

bool Application::OnMainThread() const {
  return GetCurrentThreadId() == kLoadingThread;
}

void Application::ProcessMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      // It is the application's own loop that has to see it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

Handle Application::MainWindow() const {
  HWND found = nullptr;
  EnumThreadWindows(kLoadingThread, &IsMainWindow, reinterpret_cast<LPARAM>(&found));
  return reinterpret_cast<Handle>(found);
}

}  // namespace kiv::host::win32
