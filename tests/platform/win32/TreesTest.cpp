// Trees with what Windows alone has: junctions, files that somebody has for himself, names outside of the code page.
#include <gmock/gmock.h>
#include <windows.h>
#include <winioctl.h>

#include <cstring>
#include <iostream>

#include "Expect.h"
#include "WinUtil/ToldFailures.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileLists.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;
using testing::UnorderedElementsAre;

class WindowsTrees : public testing::Test {
 protected:
  WindowsTrees() { std::filesystem::create_directory(folder_ / "sursa"); }

  [[nodiscard]] Text At(const path& name) const {
    path native = folder_ / name;
    return platform::TextFromPath(native.make_preferred());
  }
  void Copy() { RecursiveCopyWithExt(At("sursa"), At("copie"), {"*"}, label_, 350); }

  TestFolder folder_;
  host::headless::Label label_{nullptr, "lblFisier"};
};

/// Makes a folder a junction to another one; the system's code where it knows none.
DWORD MakeJunction(const path& at, const path& target) {
  const std::wstring substitute = L"\\??\\" + target.native();
  const auto length = static_cast<std::uint16_t>(substitute.size() * sizeof(wchar_t));
  // Tag, length, a reserved word; then where the two names begin and how long they are, and the names with a zero each.
  std::vector<std::uint16_t> record = {0x0003, 0xA000, static_cast<std::uint16_t>(length + 12), 0,
                                       0,      length, static_cast<std::uint16_t>(length + 2),  0};
  record.insert(record.end(), substitute.begin(), substitute.end());
  record.resize(record.size() + 2);
  std::filesystem::create_directory(at);
  const HANDLE folder = CreateFileW(at.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  DWORD given = 0;
  const bool made = DeviceIoControl(folder, FSCTL_SET_REPARSE_POINT, record.data(),
                                    static_cast<DWORD>(record.size()) * 2, nullptr, 0, &given, nullptr) != 0;
  const DWORD code = made ? 0 : GetLastError();
  CloseHandle(folder);
  if (!made) {
    std::filesystem::remove(at);
  }
  return code;
}

/// On Wine a program of the system below makes a link of that system's.
bool MakeHostLink(const path& at, const std::wstring& target) {
  std::wstring command = L"Z:\\bin\\ln -s " + target + L" " + at.filename().native();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(L"Z:\\bin\\ln", command.data(), nullptr, nullptr, FALSE, 0, nullptr, at.parent_path().c_str(),
                     &startup, &process) == 0) {
    return false;
  }
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
  for (int wait = 0; wait < 100 && GetFileAttributesW(at.c_str()) == INVALID_FILE_ATTRIBUTES; ++wait) {
    Sleep(50);
  }
  return GetFileAttributesW(at.c_str()) != INVALID_FILE_ATTRIBUTES;
}

TEST_F(WindowsTrees, AreNotEnteredThroughLinks) {
  const path target = folder_ / "sursa" / "adevarat";
  std::filesystem::create_directory(target);
  std::filesystem::create_directory(folder_ / "sters");
  WriteWhole(target / "a", "neatins");
  for (const path& link : {folder_ / "sursa" / "legatura", folder_ / "sters" / "legatura"}) {
    if (const DWORD code = MakeJunction(link, target); code != 0) {
      std::cout << "no junctions here, error " << code << "; a link of the system below stands for one\n";
      if (!MakeHostLink(link, L"../sursa/adevarat")) {
        GTEST_SKIP() << "nor that";
      }
    }
    ASSERT_TRUE(std::filesystem::exists(link / "a"));
  }
  EXPECT_THAT(InitFileList(At("sursa"), {"*"}), UnorderedElementsAre(At("sursa/adevarat/a"), At("sursa/legatura")));
  EXPECT_EQ(MeasureTree(At("sursa")).bytes, 7U);
  Copy();
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "adevarat" / "a"), "neatins");
  const DWORD copied = GetFileAttributesW((folder_ / "copie" / "legatura").c_str());
  EXPECT_TRUE(copied == INVALID_FILE_ATTRIBUTES || (copied & FILE_ATTRIBUTE_REPARSE_POINT) != 0) << copied;
  RecursiveDelete(At("sters"));
  std::cout << "what held a link is " << (std::filesystem::exists(folder_ / "sters") ? "left\n" : "deleted\n");
  EXPECT_EQ(ReadWhole(target / "a"), "neatins") << "a link is deleted, not what it leads to";
}

TEST_F(WindowsTrees, WithNamesOutsideTheCodePageAreCopiedAndDeleted) {
  const std::wstring folder = L"\u65E5\u672C";
  const std::wstring file = L"\u4E2D\u6587 \U0001F600.txt";
  std::filesystem::create_directory(folder_ / "sursa" / folder);
  WriteWhole(folder_ / "sursa" / folder / file, "continut");
  WriteWhole(folder_ / "sursa" / L"\u0219i.txt", "virgula");
  const StringList files = InitFileList(At("sursa"), {"TXT"});
  EXPECT_EQ(files.size(), 2U);
  for (const Text& name : files) {
    EXPECT_EQ(name.substr(0, At("sursa").size() + 1), At("sursa") + "\\") << name;
  }
  for (int round = 0; round < 2; ++round) {  // also over the former ones
    Copy();
    EXPECT_EQ(ReadWhole(folder_ / "copie" / folder / file), "continut");
    EXPECT_EQ(ReadWhole(folder_ / "copie" / L"\u0219i.txt"), "virgula");
  }
  EXPECT_EQ(MeasureTree(At("copie")).bytes, 15U);
  RecursiveDelete(At("copie"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copie"));
}

TEST_F(WindowsTrees, WithAFileThatSomebodyHasForHimselfAreToldOf) {
  ToldFailures failures;
  WriteWhole(folder_ / "sursa" / "a", "liber");
  WriteWhole(folder_ / "sursa" / "b", "tinut");
  const HANDLE held = CreateFileW((folder_ / "sursa" / "b").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  ExpectError<Error>([&] { CopyNoBuffering(At("sursa/b"), At("nou")); }, "Nu pot deschide " + At("sursa/b"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "nou"));
  try {
    static_cast<void>(ComparaFisiere(At("sursa/a"), At("sursa/b")));
    ADD_FAILURE() << "it is held";
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), ERROR_SHARING_VIOLATION);
    EXPECT_THAT(error.what(), testing::StartsWith("ComparaFisiere: " + At("sursa/b") + ": "));
  }
  Copy();
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "a"), "liber");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copie" / "b"));
  RecursiveDelete(At("sursa"));
  EXPECT_THAT(failures.told, testing::ElementsAre(At("sursa/b") + " 32", At("sursa/b") + " 32"));
  CloseHandle(held);
  EXPECT_EQ(ReadWhole(folder_ / "sursa" / "b"), "tinut");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sursa" / "a"));
}

}  // namespace
}  // namespace kiv
