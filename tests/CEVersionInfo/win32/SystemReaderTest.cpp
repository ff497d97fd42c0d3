// The library's reader of version resources against the system's own.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>
#include <string>

#include "CEVersionInfo/win32/SystemReader.h"
#include "kivtools/WinUtil/Versions.h"

namespace kiv {
namespace {

using namespace literals;
using namespace test;
namespace fs = std::filesystem;

/// An answer in one line.
std::string Joined(const Answer& answer) {
  std::string joined;
  for (const Text& text : answer) {
    for (const char byte : text) {
      char hexadecimal[3];
      std::snprintf(hexadecimal, sizeof hexadecimal, "%02x", static_cast<unsigned char>(byte));
      joined += hexadecimal;
    }
    joined += ' ';
  }
  return joined;
}

TEST(SystemReader, AgreesOnEveryFileOfTheSystem) {
  std::size_t files = 0;
  std::size_t withResource = 0;
  for (const auto& entry : fs::recursive_directory_iterator(L"C:\\", fs::directory_options::skip_permission_denied)) {
    const auto extension = entry.path().extension();
    if (entry.is_regular_file() && (extension == L".dll" || extension == L".exe")) {
      const auto expected = AskSystem(entry.path());
      ASSERT_TRUE(expected) << entry.path();
      EXPECT_EQ(AskLibrary(entry.path()), *expected) << entry.path();
      ++files;
      withResource += (*expected)[0] != kNone ? 1 : 0;
    }
  }
  std::cout << files << " files, " << withResource << " with a version resource\n";
  EXPECT_GT(files, 500U);
  EXPECT_GT(withResource, 100U);
}

TEST(SystemReader, FindsNoResourceButThatNumberedOneEither) {
  const fs::path named = fs::path(KIV_VERSION_FILES) / "cu_nume_i686.dll";
  if (!exists(named)) {
    GTEST_SKIP() << "no " << named << ": install the package binutils-mingw-w64-i686";
  }
  EXPECT_EQ(AskLibrary(named), *AskSystem(named));
}

TEST(SystemReader, AgreesOnFilesWithOneByteWrong) {
  // The system's reader crashes on some damaged files, so it is asked in child processes: one at a time answers file
  // after file until it ends or dies, and the next one goes on after the file that killed it.
  const fs::path folder = fs::temp_directory_path() / "damaged";
  fs::create_directories(folder);
  std::ifstream original(fs::path(KIV_VERSION_FILES) / "complet_i686.dll", std::ios::binary);
  const std::string image{std::istreambuf_iterator<char>(original), {}};
  if (image.empty()) {
    GTEST_SKIP() << "no complet_i686.dll: install the package binutils-mingw-w64-i686";
  }
  std::mt19937 random(1'205);
  const std::size_t resources = image.find("V\0S\0_\0V\0E\0R\0", 0, 12) - 6;
  constexpr int kFiles = 1'000;
  for (int i = 0; i < kFiles; ++i) {
    std::string damaged = image;
    const std::size_t at = i % 4 == 0 ? random() % damaged.size() : resources + random() % (damaged.size() - resources);
    damaged[at] = static_cast<char>(random());
    std::ofstream(folder / (std::to_string(i) + ".dll"), std::ios::binary) << damaged;
  }

  int crashes = 0;
  int available = 0;
  int same = 0;
  const std::string kRefused = Joined(*AskSystem(folder));
  for (int next = 0; next < kFiles;) {
    SetEnvironmentVariableW(L"KIV_FIRST_DAMAGED", std::to_wstring(next).c_str());
    wchar_t command[MAX_PATH * 2];
    GetModuleFileNameW(nullptr, command, MAX_PATH);
    wcscat(command, L" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=*DISABLED_AnswersAsAChild");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child{};
    ASSERT_NE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &child), 0);
    WaitForSingleObject(child.hProcess, INFINITE);
    CloseHandle(child.hProcess);
    CloseHandle(child.hThread);
    std::ifstream answers(folder / "answers", std::ios::binary);
    std::string line;
    const int first = next;
    while (std::getline(answers, line)) {
      const Answer mine = AskLibrary(folder / (std::to_string(next) + ".dll"));
      // Each may refuse what the other still reads; but the same text they read the same, up to where the library sees
      // the block end that the text is in.
      if (mine[0] != kNone && line != "no answer" && line != kRefused) {
        std::istringstream mineTexts(Joined(mine));
        std::istringstream theirTexts(line);
        std::string mineText;
        std::string theirText;
        while (std::getline(mineTexts, mineText, ' ') && std::getline(theirTexts, theirText, ' ')) {
          EXPECT_TRUE(theirText.starts_with(mineText)) << next << ": " << mineText << " and " << theirText;
        }
        same += Joined(mine) == line ? 1 : 0;
        ++available;
      }
      ++next;
    }
    if (next < kFiles) {
      ++crashes;
      ++next;
    }
    ASSERT_GT(next, first);
  }
  std::cout << kFiles << " damaged files, " << available << " still read by both, " << same << " alike, " << crashes
            << " crashes of the system\n";
  EXPECT_GT(available, kFiles / 2);
  EXPECT_GT(same, available - available / 50);
  fs::remove_all(folder);
}

LONG WINAPI EndAtOnce(EXCEPTION_POINTERS* /*what*/) {
  TerminateProcess(GetCurrentProcess(), 1);
  return EXCEPTION_EXECUTE_HANDLER;
}

TEST(SystemReader, DISABLED_AnswersAsAChild) {
  SetUnhandledExceptionFilter(EndAtOnce);
  const fs::path folder = fs::temp_directory_path() / "damaged";
  std::ofstream answers(folder / "answers", std::ios::binary | std::ios::trunc);
  for (int i = std::stoi(std::getenv("KIV_FIRST_DAMAGED")); fs::exists(folder / (std::to_string(i) + ".dll")); ++i) {
    std::optional<Answer> answer;
    try {
      answer = AskSystem(folder / (std::to_string(i) + ".dll"));
    } catch (const std::bad_alloc&) {  // the system believes in a resource of gigabytes
    }
    answers << (answer ? Joined(*answer) : "no answer") << std::endl;
  }
}

TEST(SystemReader, PathsHaveTheLibrarysLetters) {
  const fs::path folder = fs::temp_directory_path();
  copy_file(fs::path(KIV_VERSION_FILES) / "complet_i686.dll", folder / L"\u0162ar\u0103.dll");
  EXPECT_EQ(GetFileVersionKiv(folder.string() + Text("Ţară.dll"_ro)), "5.12.0.341");
  remove(folder / L"\u0162ar\u0103.dll");
}

TEST(SystemReader, ThisProgramsOwnVersion) {
  EXPECT_EQ(ThisExeVersionInfo(), "5.12.0.341") << "the resource linked into this program";
  EXPECT_EQ(TCEVersionInfo().Internalname, "facturi");
}

}  // namespace
}  // namespace kiv
