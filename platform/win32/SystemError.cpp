#include "platform/SystemError.h"

#include <windows.h>

#include <array>

#include "core/WideText.h"

namespace kiv::platform {

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

OsError SystemError(TextView context, std::int32_t code) {
  return {code, Text(context) + ": " + SystemText(code)};
}

OsError LastSystemError(TextView context) {
  return SystemError(context, static_cast<std::int32_t>(GetLastError()));
}

}  // namespace kiv::platform
