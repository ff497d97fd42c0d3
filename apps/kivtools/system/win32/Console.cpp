#include "apps/kivtools/system/Console.h"

// shellapi.h needs what windows.h defines.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <cwchar>

#include "apps/kivtools/system/SystemError.h"
#include "apps/kivtools/system/win32/Wide.h"

namespace kivtools {
namespace {

HANDLE StreamHandle(StandardStream stream) noexcept {
  constexpr std::array<DWORD, 3> kNames = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  return GetStdHandle(kNames[static_cast<std::size_t>(stream)]);
}

std::atomic<UINT> former_code_page{0};
std::atomic<std::size_t> columns_to_wipe{0};

void PutCodePageBack() noexcept {
  if (const UINT former = former_code_page.exchange(0); former != 0) {
    SetConsoleOutputCP(former);
  }
}

/// Runs on a thread of its own when the user ends the program, which the system does after it.
BOOL WINAPI WipeAndEnd(DWORD /*event*/) noexcept {
  if (const std::size_t columns = columns_to_wipe; columns > 0) {
    try {
      WriteAll(StandardStream::Error, "\r" + std::string(columns, ' ') + "\r");
    } catch (...) {  // NOLINT(bugprone-empty-catch): only the bar stays on the screen
    }
  }
  PutCodePageBack();
  return FALSE;
}

}  // namespace

PreparedConsole::PreparedConsole() {
  former_code_page = GetConsoleOutputCP();
  if (former_code_page != 0) {
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCtrlHandler(WipeAndEnd, TRUE);
  }
  SetDllDirectoryW(L"");  // the library is not looked for in the folder that the user happens to be in
}

PreparedConsole::~PreparedConsole() {
  SetConsoleCtrlHandler(WipeAndEnd, FALSE);
  PutCodePageBack();
}

void WipeWhenInterrupted(std::size_t columns) noexcept {
  columns_to_wipe = columns;
}

std::vector<std::string> ArgumentsAsUtf8(int /*count*/, char** /*arguments*/) {
  // main() gets them in the system's code page, which may lack Romanian letters.
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) {
    const DWORD code = GetLastError();
    throw SystemError(Say({"the command line cannot be read", "linia de comandă nu se poate citi"}),
                      static_cast<std::int32_t>(code));
  }
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    arguments.push_back(Utf8FromWide(wide[i]));
  }
  LocalFree(static_cast<void*>(wide));
  return arguments;
}

std::optional<std::size_t> TerminalWidth(StandardStream stream) noexcept {
  DWORD mode = 0;
  if (GetConsoleMode(StreamHandle(stream), &mode) == 0) {
    return std::nullopt;
  }
  constexpr std::size_t kUsual = 80;
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  const bool told = GetConsoleScreenBufferInfo(StreamHandle(stream), &screen) != 0;
  return told ? static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left) + 1 : kUsual;
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
    const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
    const bool done = WriteFile(StreamHandle(stream), bytes.data(), wanted, &written, nullptr) != 0;
    const DWORD code = done ? DWORD{ERROR_DISK_FULL} : GetLastError();
    if (!done || written == 0) {
      const Said name = stream == StandardStream::Output ? Say({"standard output", "ieșirea standard"})
                                                         : Say({"standard error", "ieșirea pentru erori"});
      if (code == ERROR_BROKEN_PIPE || code == ERROR_NO_DATA || code == ERROR_PIPE_NOT_CONNECTED) {
        throw ReaderGone(name, static_cast<std::int32_t>(code));
      }
      throw SystemError(name, static_cast<std::int32_t>(code));
    }
    bytes.remove_prefix(written);
  }
}

}  // namespace kivtools
