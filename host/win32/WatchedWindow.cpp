#include <windows.h>

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <utility>

#include "core/WideText.h"
#include "host/win32/Watching.h"
#include "platform/SystemCalls.h"

namespace kiv::host::win32 {
namespace {

HWND Native(Handle window) noexcept {
  return reinterpret_cast<HWND>(window);
}

/// Where a failure goes while MoveWindowTo waits for the system; null at other times.
std::exception_ptr* collecting = nullptr;

/// No exception may pass through the system's own frames, from which this is called.
template <class Notify>
void Guarded(Notify&& notify) noexcept {
  try {
    notify();
  } catch (const std::exception& failure) {
    if (collecting == nullptr) {
      ShowFailure(failure);
    } else if (*collecting == nullptr) {
      *collecting = std::current_exception();
    }
  }
}

}  // namespace

std::map<HWND, Watching::Link>& Watching::Links() {
  static std::map<HWND, Link> links;
  return links;
}

void Watching::Begin(WatchedWindow& watched) {
  const HWND window = Native(watched.window_);
  if (IsWindow(window) == 0 || GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) {
    throw Error("Nu este o fereastra a acestui fir: " + std::to_string(watched.window_));
  }
  const auto [link, isNew] = Links().try_emplace(window);
  if (!isNew && link->second.watched != nullptr) {
    throw Error("Fereastra are deja un control: " + std::to_string(watched.window_));
  }
  link->second.watched = &watched;
  if (isNew) {
    link->second.before =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
  }
}

void Watching::End(const WatchedWindow& watched) noexcept {
  const HWND window = Native(watched.window_);
  const auto link = Links().find(window);
  if (link == Links().end()) {
    return;
  }
  link->second.watched = nullptr;
  // Who came after has the address of this procedure: it must stay then, and passes everything on.
  if (reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC)) == &Procedure) {
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(link->second.before));
    Links().erase(link);
  }
}

WatchedWindow* Watching::Of(HWND window) noexcept {
  const auto link = Links().find(window);
  return link == Links().end() ? nullptr : link->second.watched;
}

LRESULT CALLBACK Watching::Procedure(HWND window, UINT message, WPARAM wide, LPARAM large) {
  const auto link = Links().find(window);
  if (link == Links().end()) {
    return DefWindowProcW(window, message, wide, large);
  }
  const WNDPROC before = link->second.before;
  if (message == WM_NCDESTROY) {
    if (link->second.watched != nullptr) {
      link->second.watched->window_ = 0;
    }
    Links().erase(link);
    return CallWindowProcW(before, window, message, wide, large);
  }
  const LRESULT result = CallWindowProcW(before, window, message, wide, large);
  WatchedWindow* const watched = Of(window);  // the call may have ended it
  if (watched != nullptr && message == WM_SIZE && wide != SIZE_MINIMIZED) {
    Guarded([watched] { watched->OnSize(); });
  } else if (watched != nullptr && message == WM_WINDOWPOSCHANGED &&
             (reinterpret_cast<const WINDOWPOS*>(large)->flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) != 0) {
    Guarded([watched] { watched->OnShow(); });
  }
  return result;
}

WatchedWindow::WatchedWindow(Handle window) : window_(window) {
  Watching::Begin(*this);
}

WatchedWindow::~WatchedWindow() {
  Watching::End(*this);
  if (font_ != 0) {
    if (window_ != 0) {
      SendMessageW(Native(window_), WM_SETFONT, 0, FALSE);
    }
    DeleteObject(reinterpret_cast<HFONT>(font_));
  }
}

Rect WatchedWindow::BoundsInParent() const noexcept {
  RECT bounds{};
  if (GetWindowRect(Native(window_), &bounds) == 0) {
    return {};
  }
  const auto isChild = (GetWindowLongPtrW(Native(window_), GWL_STYLE) & WS_CHILD) != 0;
  if (isChild) {
    MapWindowPoints(nullptr, GetAncestor(Native(window_), GA_PARENT), reinterpret_cast<POINT*>(&bounds), 2);
  }
  return {bounds.left, bounds.top, bounds.right, bounds.bottom};
}

void WatchedWindow::MoveWindowTo(const Rect& bounds) {
  if (window_ == 0) {
    return;
  }
  std::exception_ptr failure;
  std::exception_ptr* const outer = std::exchange(collecting, &failure);
  const BOOL moved = SetWindowPos(Native(window_), nullptr, bounds.left, bounds.top, std::max(bounds.Width(), 0),
                                  std::max(bounds.Height(), 0), SWP_NOZORDER | SWP_NOOWNERZORDER | SWP_NOACTIVATE);
  const platform::SystemStatus status = moved != 0 ? platform::SystemStatus() : platform::LastStatus();
  collecting = outer;
  if (failure != nullptr) {
    std::rethrow_exception(failure);
  }
  status.OrThrow("Nu pot muta fereastra");
}

Size WatchedWindow::InnerSize() const noexcept {
  RECT inner{};
  return GetClientRect(Native(window_), &inner) != 0 ? Size{inner.right, inner.bottom} : Size{};
}

bool WatchedWindow::IsShown() const noexcept {
  return (GetWindowLongPtrW(Native(window_), GWL_STYLE) & WS_VISIBLE) != 0;
}

Text WatchedWindow::ClassOfWindow() const {
  std::array<wchar_t, 257> name{};
  const int length = GetClassNameW(Native(window_), name.data(), static_cast<int>(name.size()));
  return ShownText(std::wstring_view(name.data(), static_cast<std::size_t>(length)));
}

void WatchedWindow::ScaleWindowFont(std::int32_t multiplier, std::int32_t divisor) {
  if (window_ == 0) {
    return;
  }
  auto* font = reinterpret_cast<HGDIOBJ>(SendMessageW(Native(window_), WM_GETFONT, 0, 0));
  if (font == nullptr) {
    font = GetStockObject(SYSTEM_FONT);
  }
  LOGFONTW description{};
  if (GetObjectW(font, sizeof description, &description) == 0) {
    return;  // the application has freed its font; there is nothing to scale
  }
  description.lfHeight = MulDiv(description.lfHeight, multiplier, divisor);
  description.lfWidth = 0;
  constexpr TextView kRefused = "Nu pot mari fontul";
  platform::Admitted(platform::SystemCall::MakeDrawing).OrThrow(kRefused);
  const HFONT scaled = CreateFontIndirectW(&description);
  if (scaled == nullptr) {
    platform::LastStatus().Throw(kRefused);
  }
  SendMessageW(Native(window_), WM_SETFONT, reinterpret_cast<WPARAM>(scaled), TRUE);
  const Handle before = std::exchange(font_, reinterpret_cast<Handle>(scaled));
  if (before != 0) {
    DeleteObject(reinterpret_cast<HFONT>(before));
  }
}

}  // namespace kiv::host::win32
