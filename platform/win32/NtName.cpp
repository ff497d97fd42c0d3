#include <new>

#include "platform/win32/Nt.h"

namespace kiv::platform {
namespace {

constexpr std::size_t kLongestName = 0x7FFF;

bool StartsWith(std::wstring_view text, std::wstring_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

/// The path from the root on, without "." and "..", with backslashes alone. Empty where the system refuses it.
std::wstring FullPath(const wchar_t* path) {
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr);
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) {
      return full;
    }
  }
}

/// A path as the inner interface names it: "C:\a" is "\??\C:\a" there, "\\server\share" is "\??\UNC\server\share".
std::wstring WholeName(const wchar_t* path) {
  const std::wstring_view given = path;
  if (StartsWith(given, L"\\\\?\\")) {
    return L"\\??\\" + std::wstring(given.substr(4));  // taken as it is, by its very meaning
  }
  std::wstring full = FullPath(path);
  if (StartsWith(full, L"\\\\.\\")) {
    return L"\\??\\" + full.substr(4);
  }
  if (StartsWith(full, L"\\\\")) {
    return L"\\??\\UNC" + full.substr(1);
  }
  return full.empty() ? full : L"\\??\\" + full;
}

}  // namespace

SystemStatus NtName::Set(const Folder& at, SystemName name) noexcept {
  std::wstring_view letters = name.Get();
  if (letters.empty()) {
    return SystemStatus(ERROR_PATH_NOT_FOUND);
  }
  if (&at != &Folder::Working()) {
    if (!at.IsOpen()) {
      return SystemStatus(ERROR_INVALID_HANDLE);
    }
    root_ = AsHandle(at.Handle().Get());
  } else {
    try {
      whole_ = WholeName(name.Get());
    } catch (const std::bad_alloc&) {
      return SystemStatus(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (whole_.empty()) {
      return LastStatus();
    }
    letters = whole_;
  }
  if (letters.size() > kLongestName) {
    return SystemStatus(ERROR_FILENAME_EXCED_RANGE);
  }
  letters_.Buffer = const_cast<wchar_t*>(letters.data());
  letters_.Length = static_cast<USHORT>(letters.size() * sizeof(wchar_t));
  letters_.MaximumLength = letters_.Length;
  return {};
}

}  // namespace kiv::platform
