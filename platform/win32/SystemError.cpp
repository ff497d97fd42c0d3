#include "platform/SystemError.h"

#include <windows.h>

#include <array>

#include "core/WideText.h"

namespace kiv::platform {

bool SystemStatus::IsMissing() const noexcept {
  return code_ == ERROR_FILE_NOT_FOUND || code_ == ERROR_PATH_NOT_FOUND;
}

bool SystemStatus::IsExisting() const noexcept {
  return code_ == ERROR_ALREADY_EXISTS || code_ == ERROR_FILE_EXISTS;
}

bool SystemStatus::IsBusy() const noexcept {
  return code_ == ERROR_LOCK_VIOLATION || code_ == ERROR_SHARING_VIOLATION;
}

bool SystemStatus::IsDenied() const noexcept {
  return code_ == ERROR_ACCESS_DENIED;
}

bool SystemStatus::IsOutOfHandles() const noexcept {
  return false;
}

SystemStatus LastStatus() noexcept {
  const auto code = static_cast<std::int32_t>(GetLastError());
  return SystemStatus(code != 0 ? code : ERROR_GEN_FAILURE);
}

// In the user's language, as Windows-1250; "?" stands for letters that the code page lacks.
Text SystemText(std::int32_t code) {
  std::array<wchar_t, 512> wide{};
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                static_cast<DWORD>(code), 0, wide.data(), static_cast<DWORD>(wide.size()), nullptr);
  while (length > 0 && (wide[length - 1] == L'\r' || wide[length - 1] == L'\n' || wide[length - 1] == L' ')) {
    --length;
  }
  Text text = ShownText(std::wstring_view(wide.data(), length));
  return text.empty() ? "eroarea " + std::to_string(code) : text;
}

}  // namespace kiv::platform
