#include "platform/Paths.h"

#include <windows.h>

#include <array>

#include "core/WideText.h"
#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

/// The wide path as Windows-1250; a path with letters outside the code page is taken by its short name, which has none.
Text TextFromWidePath(const wchar_t* wide) {
  Text text;
  for (const wchar_t* at = wide; *at != L'\0'; ++at) {
    const auto byte = windows1250::FromUnicode(*at);
    if (!byte) {
      std::array<wchar_t, 2048> shortForm{};
      const DWORD length = GetShortPathNameW(wide, shortForm.data(), static_cast<DWORD>(shortForm.size()));
      const bool helps = length > 0 && length < shortForm.size() && std::wstring_view(shortForm.data()) != wide;
      if (!helps) {
        throw SystemError("calea are litere din afara Windows-1250", ERROR_NO_UNICODE_TRANSLATION);
      }
      return TextFromWidePath(shortForm.data());
    }
    text.push_back(static_cast<char>(*byte));
  }
  return text;
}

}  // namespace

std::filesystem::path PathFromText(TextView path) {
  std::wstring wide;
  wide.reserve(path.size());
  for (const char byte : path) {
    wide.push_back(static_cast<wchar_t>(windows1250::ToUnicode(static_cast<unsigned char>(byte))));
  }
  return {wide};
}

Text TextFromPath(const std::filesystem::path& path) {
  return TextFromWidePath(path.c_str());
}

Text ShownPath(NativeView path) {
  return ShownText(path);
}

TextView FolderWithSeparator(TextView path) noexcept {
  return path.substr(0, path.find_last_of("\\/:") + 1);
}

Text TemporaryFolder() {
  std::array<wchar_t, 2048> wide{};
  const DWORD length = GetTempPathW(static_cast<DWORD>(wide.size()), wide.data());
  if (length == 0) {
    LastStatus().Throw("ReadWindowsTempPath");
  }
  if (length >= wide.size()) {
    SystemStatus(ERROR_INSUFFICIENT_BUFFER).OrThrow("ReadWindowsTempPath");
  }
  return TextFromWidePath(wide.data());
}

}  // namespace kiv::platform
