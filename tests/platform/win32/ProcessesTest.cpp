#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>

#include "Expect.h"
#include "kivtools/Text.h"
#include "kivtools/WinUtil/Processes.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using namespace kiv::literals;

HANDLE AsHandle(Handle handle) {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

/// The exit code of a process that ends within a minute; its handle is closed.
DWORD ExitCode(Handle process) {
  DWORD code = 0;
  EXPECT_EQ(WaitForSingleObject(AsHandle(process), 60'000), WAIT_OBJECT_0);
  EXPECT_NE(GetExitCodeProcess(AsHandle(process), &code), 0);
  EXPECT_NE(CloseHandle(AsHandle(process)), 0);
  return code;
}

/// The test's child program in a folder and under a name with a blank and Romanian letters.
class StartedChild : public testing::Test {
 protected:
  StartedChild() {
    std::filesystem::create_directory(inner_);
    std::filesystem::copy_file(KIV_CHILD_PROGRAM, platform::PathFromText(program_));
  }

  TestFolder folder_;
  std::filesystem::path inner_ = std::filesystem::absolute(folder_.Path() / L"un folder");
  Text program_ = platform::TextFromPath(inner_) + "\\copil ţî.exe"_ro;
};

TEST_F(StartedChild, SeesItsCommandLineAndItsOwnFolder) {
  const Text parameters = "  \"a b\" c\\\"d"_ro;
  EXPECT_EQ(ExitCode(StartProgram(program_, parameters)), 7U);
  EXPECT_EQ(FromUtf8(ReadWhole(inner_ / "report")),
            "\"" + program_ + "\" " + parameters + "\n" + platform::TextFromPath(inner_) + "\n");
  EXPECT_EQ(ExitCode(StartProgram(program_, "")), 7U);
  EXPECT_EQ(FromUtf8(ReadWhole(inner_ / "report")), "\"" + program_ + "\" \n" + platform::TextFromPath(inner_) + "\n");
}

TEST_F(StartedChild, EndsWithCode999) {
  const Handle process = StartProgram(program_, "wait");
  while (!std::filesystem::exists(inner_ / "report")) {
    Sleep(10);
  }
  EXPECT_TRUE(TerminateProgram(process));
  EXPECT_EQ(ExitCode(process), 999U);
  EXPECT_FALSE(TerminateProgram(process));  // closed
}

TEST_F(StartedChild, LeavesOneHandleToTheCallerAndNoneAfterAFailure) {
  const auto handles = [] {
    DWORD count = 0;
    EXPECT_NE(GetProcessHandleCount(GetCurrentProcess(), &count), 0);
    return count;
  };
  ExitCode(StartProgram(program_, ""));  // what the system keeps open from the first time on
  const DWORD before = handles();
  ExitCode(StartProgram(program_, ""));
  EXPECT_THROW(StartProgram(program_ + "x", ""), OsError);
  EXPECT_THROW(SetPriviledgeForCurrentProcess("SeNoSuchPrivilege"), OsError);
  EXPECT_EQ(handles(), before);
}

TEST_F(StartedChild, OneThatCannotBeStartedSaysWhy) {
  const Text missing = platform::TextFromPath(inner_) + "\\missing.exe";
  try {
    StartProgram(missing, "");
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), ERROR_FILE_NOT_FOUND);
    EXPECT_THAT(error.what(), testing::StartsWith("StartProgram: " + missing + ": "));
  }
  EXPECT_THROW(StartProgram(program_ + Text("\0x", 2), ""), OsError);
}

TEST_F(StartedChild, RunsAsATokensUser) {
  HANDLE own = nullptr;
  ASSERT_NE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own), 0);
  HANDLE token = nullptr;
  ASSERT_NE(DuplicateTokenEx(own, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenPrimary, &token), 0);
  const std::filesystem::path report = std::filesystem::current_path() / "report";
  StartProgramAsUser(program_, "as it stands", reinterpret_cast<Handle>(token));
  for (int i = 0; i < 1000 && !std::filesystem::exists(report); ++i) {
    Sleep(10);
  }
  EXPECT_THAT(ReadWhole(report), testing::StartsWith("as it stands\n"));  // in the caller's folder
  std::filesystem::remove(report);
  CloseHandle(token);
  CloseHandle(own);
}

TEST(Privileges, AnUnknownNameRaisesTheSystemsError) {
  SetPriviledgeForCurrentProcess("SeShutdownPrivilege");
  try {
    SetPriviledgeForCurrentProcess("SeNoSuchPrivilege");
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), ERROR_NO_SUCH_PRIVILEGE);
    EXPECT_THAT(error.what(), testing::MatchesRegex("SetPriviledgeForCurrentProcess: SeNoSuchPrivilege: .+"));
  }
}

TEST(Processes, TheInvalidHandleIsNotThisProcess) {
  EXPECT_FALSE(TerminateProgram(reinterpret_cast<Handle>(INVALID_HANDLE_VALUE)));
}

}  // namespace
}  // namespace kiv
