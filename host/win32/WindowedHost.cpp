#include <windows.h>

#include "host/BuiltIn.h"
#include "host/win32/Services.h"

namespace kiv::host {
namespace {

class Windowed : public Host {
 public:
  [[nodiscard]] Application& GetApplication() override { return application_; }
  [[nodiscard]] Screen& GetScreen() override { return screen_; }
  [[nodiscard]] Dialogs& GetDialogs() override { return dialogs_; }
  [[nodiscard]] Clipboard& GetClipboard() override { return clipboard_; }
  [[nodiscard]] Colours& GetColours() override { return colours_; }

 private:
  win32::Application application_;
  win32::Screen screen_;
  win32::Dialogs dialogs_;
  win32::Clipboard clipboard_;
  win32::Colours colours_;
};

}  // namespace

namespace win32 {

// A service has a desktop too, on a window station that nobody sees: a message box there would wait for ever.
bool StationIsVisible(HWINSTA station) noexcept {
  USEROBJECTFLAGS flags{};
  return station != nullptr && GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, nullptr) != 0 &&
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace win32

Host* WindowedHost() noexcept {
  static Windowed windowed;
  static const bool shown = win32::StationIsVisible(GetProcessWindowStation());
  return shown ? &windowed : nullptr;
}

}  // namespace kiv::host
