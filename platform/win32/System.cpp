#include "platform/System.h"

#include <windows.h>

#include <array>

#include "core/WideText.h"

namespace kiv::platform {

Text UserName() {
  std::array<wchar_t, 1024> wide{};
  auto length = static_cast<DWORD>(wide.size());
  if (GetUserNameW(wide.data(), &length) == 0) {
    return {};
  }
  return ShownText(std::wstring_view(wide.data()));
}

std::int32_t MajorVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExW(&version) != 0 ? static_cast<std::int32_t>(version.dwMajorVersion) : 0;
}

std::uint16_t UserLanguage() {
  return GetUserDefaultLangID();
}

}  // namespace kiv::platform
