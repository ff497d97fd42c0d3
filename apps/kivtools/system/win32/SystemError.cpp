#include "apps/kivtools/system/SystemError.h"

#include <windows.h>

#include <array>

#include "apps/kivtools/system/win32/Wide.h"

namespace kivtools {
namespace {

std::string TextOf(std::int32_t code) {
  std::array<wchar_t, 512> wide{};
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(code), 0,
                     wide.data(), static_cast<DWORD>(wide.size()), nullptr);
  const std::wstring_view text(wide.data(), length);
  return Utf8FromWide(text.substr(0, text.find_last_not_of(L" \r\n") + 1));
}

Said Message(const Said& context, const std::string& text, std::int32_t code) {
  return Say({"{0}{1} (error {2})", "{0}{1} (eroarea {2})"}, context, text.empty() ? "" : ": " + text, code);
}

}  // namespace

SystemError::SystemError(const Said& context, std::int32_t code)
    : InputError(Message(context, TextOf(code), code)), code_(code) {}

SystemError::SystemError(const Said& context, const std::error_code& error)
    : InputError(Message(context, error.category() == std::system_category() ? TextOf(error.value()) : error.message(),
                         error.value())),
      code_(error.value()) {}

}  // namespace kivtools
