#include <windows.h>

#include <exception>

#include "host/win32/Services.h"
#include "platform/SystemCalls.h"

namespace kiv::host::win32 {
namespace {

Rect FromSystem(const RECT& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

/// What the enumeration has met; an exception must not pass through the system.
struct Found {
  std::vector<Monitor> monitors;
  std::exception_ptr failure;
};

BOOL CALLBACK AddMonitor(HMONITOR handle, HDC /*device*/, RECT* /*part*/, LPARAM argument) {
  auto& found = *reinterpret_cast<Found*>(argument);
  MONITORINFO info{};
  info.cbSize = sizeof info;
  if (GetMonitorInfoW(handle, &info) == 0) {
    return TRUE;  // unplugged meanwhile
  }
  try {
    const bool isMain = (info.dwFlags & MONITORINFOF_PRIMARY) != 0;
    found.monitors.insert(isMain ? found.monitors.begin() : found.monitors.end(),
                          {FromSystem(info.rcMonitor), FromSystem(info.rcWork)});
  } catch (...) {
    found.failure = std::current_exception();
    return FALSE;
  }
  return TRUE;
}

}  // namespace

std::vector<Monitor> Screen::Monitors() const {
  Found found;
  const BOOL whole = EnumDisplayMonitors(nullptr, nullptr, &AddMonitor, reinterpret_cast<LPARAM>(&found));
  if (found.failure) {
    std::rethrow_exception(found.failure);
  }
  if (whole == 0) {
    platform::LastStatus().Throw("Nu pot enumera monitoarele");
  }
  return std::move(found.monitors);
}

Point Screen::MousePosition() const {
  POINT position{};
  if (GetCursorPos(&position) == 0) {
    platform::LastStatus().Throw("Nu pot afla pozitia mouse-ului");
  }
  return {position.x, position.y};
}

std::int32_t Screen::PixelsPerInch() const {
  constexpr TextView kRefused = "Nu pot afla rezolutia ecranului";
  platform::Admitted(platform::SystemCall::MakeDrawing).OrThrow(kRefused);
  const HDC screen = GetDC(nullptr);
  if (screen == nullptr) {
    platform::LastStatus().Throw(kRefused);
  }
  const std::int32_t pixels = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return pixels;
}

std::int32_t Screen::MessageFontHeight() const {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) == 0) {
    platform::LastStatus().Throw("Nu pot afla fontul mesajelor");
  }
  return metrics.lfMessageFont.lfHeight;
}

std::int32_t Screen::Capability(Handle device, DeviceCapability capability) const {
  return GetDeviceCaps(reinterpret_cast<HDC>(device), static_cast<int>(capability));
}

Colour Colours::SystemColour(std::uint8_t number) const {
  return GetSysColor(number);
}

}  // namespace kiv::host::win32
