#include "platform/Console.h"

// shellapi.h needs what windows.h defines.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <utility>

#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

[[noreturn]] void ThrowLastError() {
  const auto code = static_cast<std::int32_t>(GetLastError());
  throw OsError(code, SystemText(code));
}

HANDLE StreamHandle(StandardStream stream) noexcept {
  constexpr std::array<DWORD, 3> kNames = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  return GetStdHandle(kNames[static_cast<std::size_t>(stream)]);
}

HANDLE AsHandle(std::intptr_t handle) noexcept {
  return reinterpret_cast<HANDLE>(handle);
}

std::string ToUtf8Argument(const wchar_t* wide) {
  const int length = static_cast<int>(std::wcslen(wide));
  std::string utf8(static_cast<std::size_t>(length) * 3, '\0');
  const int written =
      WideCharToMultiByte(CP_UTF8, 0, wide, length, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(written));
  return utf8;
}

}  // namespace

PreparedConsole::PreparedConsole() : formerCodePage_(GetConsoleOutputCP()) {
  if (formerCodePage_ != 0) {
    SetConsoleOutputCP(CP_UTF8);
  }
}

PreparedConsole::~PreparedConsole() {
  if (formerCodePage_ != 0) {
    SetConsoleOutputCP(formerCodePage_);
  }
}

std::vector<std::string> ArgumentsAsUtf8(int /*count*/, char** /*arguments*/) {
  // main() gets them in the system's code page, which may lack Romanian letters.
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) {
    ThrowLastError();
  }
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    arguments.push_back(ToUtf8Argument(wide[i]));
  }
  LocalFree(static_cast<void*>(wide));
  return arguments;
}

bool IsTerminal(StandardStream stream) noexcept {
  DWORD mode = 0;
  return GetConsoleMode(StreamHandle(stream), &mode) != 0;
}

std::optional<std::filesystem::path> PathFromEnvironment(const char* name) {
  const std::wstring wideName(name, name + std::strlen(name));
  std::wstring value(32768, L'\0');
  const DWORD length = GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  value.resize(length < value.size() ? length : 0);
  return value.empty() ? std::nullopt : std::optional<std::filesystem::path>(value);
}

void WriteAll(StandardStream stream, std::string_view bytes) {
  constexpr std::size_t kMostAtOnce = 1U << 20U;
  while (!bytes.empty()) {
    DWORD written = 0;
    if (WriteFile(StreamHandle(stream), bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce)), &written,
                  nullptr) == 0) {
      ThrowLastError();
    }
    if (written == 0) {
      throw OsError(ERROR_DISK_FULL, SystemText(ERROR_DISK_FULL));
    }
    bytes.remove_prefix(written);
  }
}

InputStream InputStream::Open(const std::filesystem::path& path) {
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    ThrowLastError();
  }
  return {reinterpret_cast<std::intptr_t>(handle), true};
}

InputStream InputStream::Standard() {
  return {reinterpret_cast<std::intptr_t>(StreamHandle(StandardStream::Input)), false};
}

InputStream::InputStream(InputStream&& other) noexcept
    : handle_(other.handle_), owned_(std::exchange(other.owned_, false)) {}

InputStream::~InputStream() {
  if (owned_) {
    CloseHandle(AsHandle(handle_));
  }
}

std::size_t InputStream::Read(char* into, std::size_t capacity) {
  constexpr std::size_t kMostAtOnce = 1U << 24U;
  DWORD count = 0;
  if (ReadFile(AsHandle(handle_), into, static_cast<DWORD>(std::min(capacity, kMostAtOnce)), &count, nullptr) == 0 &&
      GetLastError() != ERROR_BROKEN_PIPE) {  // the writer of a pipe has closed it: the end
    ThrowLastError();
  }
  return count;
}

std::optional<std::uint64_t> InputStream::Size() const noexcept {
  LARGE_INTEGER size{};
  if (GetFileType(AsHandle(handle_)) != FILE_TYPE_DISK || GetFileSizeEx(AsHandle(handle_), &size) == 0) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(size.QuadPart);
}

}  // namespace kiv::platform
