// A program that tests start: it writes its command line and its working folder into the file "report" of that folder.
// With "wait" among its parameters it then stays until it is ended.
#include <windows.h>

#include <array>
#include <fstream>
#include <string>

namespace {

std::string Utf8(const wchar_t* wide) {
  std::array<char, 4096> text{};
  WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
  return text.data();
}

}  // namespace

int main() {
  const std::string commandLine = Utf8(GetCommandLineW());
  std::array<wchar_t, MAX_PATH> folder{};
  GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data());
  std::ofstream("report.part", std::ios::binary) << commandLine << '\n' << Utf8(folder.data()) << '\n';
  MoveFileExW(L"report.part", L"report", MOVEFILE_REPLACE_EXISTING);
  if (commandLine.ends_with("wait")) {
    Sleep(INFINITE);
  }
  return 7;
}
