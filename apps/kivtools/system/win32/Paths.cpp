#include "apps/kivtools/system/Paths.h"

// shlobj.h needs what windows.h defines.
// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include <array>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/win32/Wide.h"
#include "kivtools/Windows1250.h"

namespace kivtools {
namespace {

/// Empty where the code page lacks a letter.
std::string InWindows1250(std::wstring_view wide) {
  std::string text;
  for (const wchar_t unit : wide) {
    const auto byte = kiv::windows1250::FromUnicode(unit);
    if (!byte) {
      return {};
    }
    text.push_back(static_cast<char>(*byte));
  }
  return text;
}

std::wstring ShortName(const std::filesystem::path& path) {
  std::wstring name(32768, L'\0');  // the longest path that Windows has
  const DWORD length = GetShortPathNameW(path.c_str(), name.data(), static_cast<DWORD>(name.size()));
  name.resize(length < name.size() ? length : 0);
  return name;
}

}  // namespace

std::string Utf8FromWide(std::wstring_view wide) {
  std::string utf8(wide.size() * 3, '\0');
  const int written = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(),
                                          static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(written));
  return utf8;
}

std::filesystem::path PathFromUtf8(std::string_view name) {
  return {std::u8string(name.begin(), name.end())};
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  return Utf8FromWide(path.generic_wstring());
}

std::string LibraryPath(const std::filesystem::path& path) {
  if (path.empty()) {
    return {};
  }
  std::string text = InWindows1250(path.native());
  if (text.empty()) {
    text = InWindows1250(ShortName(path));
  }
  if (text.empty()) {
    throw InputError(Say({"{0} has letters outside Windows-1250 and no short name",
                          "{0} are litere din afara Windows-1250 și nu are nume scurt"},
                         Shown(Utf8FromPath(path))));
  }
  return text;
}

bool LibraryPathsAreUtf8() noexcept {
  return false;
}

std::string LowerName(std::string_view name) {
  std::wstring wide = PathFromUtf8(name).native();
  CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
  return Utf8FromWide(wide);
}

std::vector<std::filesystem::path> HomeFolders() {
  std::vector<std::filesystem::path> folders;
  if (auto named = PathFromEnvironment("USERPROFILE")) {
    folders.push_back(*std::move(named));
  }
  std::array<wchar_t, MAX_PATH> profile{};
  if (SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, profile.data()) == S_OK) {
    folders.emplace_back(profile.data());
  }
  return folders;
}

}  // namespace kivtools
