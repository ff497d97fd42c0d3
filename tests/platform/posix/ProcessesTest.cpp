#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Expect.h"
#include "kivtools/WinUtil/Processes.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

int ExitStatus(Handle process) {
  int status = 0;
  EXPECT_EQ(waitpid(static_cast<pid_t>(process), &status, 0), static_cast<pid_t>(process));
  return status;
}

Text Content(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// A folder with a script in it that a test starts.
class StartedScript : public testing::Test {
 protected:
  Text Write(TextView name, TextView text) {
    const std::filesystem::path file = folder_.Path() / name;
    std::ofstream(file) << "#!/bin/sh\n" << text;
    chmod(file.c_str(), 0755);
    return file.native();
  }

  TestFolder folder_;
};

TEST_F(StartedScript, GetsItsParametersAndWorksInItsOwnFolder) {
  const Text script =
      Write("prog ram", "for i in \"$0\" \"$@\"; do echo \"[$i]\"; done >report\npwd >>report\nexit 7\n");
  const int status = ExitStatus(StartProgram(script, R"( one "two three" "" )"));
  EXPECT_EQ(WEXITSTATUS(status), 7);
  EXPECT_EQ(Content(folder_.Path() / "report"),
            "[" + script + "]\n[one]\n[two three]\n[]\n" + folder_.Path().native() + "\n");
}

TEST_F(StartedScript, ARelativePathIsMeantFromHere) {
  Write("p", "pwd >report\n");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path().parent_path());
  const Handle process = StartProgram((folder_.Path().filename() / "p").native(), "");
  std::filesystem::current_path(folder_.Path());
  const Handle withoutFolder = StartProgram("p", "");
  std::filesystem::current_path(before);
  EXPECT_EQ(ExitStatus(process), 0);
  EXPECT_EQ(ExitStatus(withoutFolder), 0);
  EXPECT_EQ(Content(folder_.Path() / "report"), folder_.Path().native() + "\n");
}

TEST_F(StartedScript, GetsNoOpenFileAndNoIgnoredSignal) {
  const Text script = Write("p", "ls /proc/self/fd >report\ngrep -E 'SigBlk|SigIgn' /proc/self/status >>report\n");
  const int open = ::open("/dev/null", O_RDONLY);  // without close-on-exec, as other libraries open files
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  sigset_t held;
  sigset_t former;
  sigemptyset(&held);
  sigaddset(&held, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &held, &former);
  const Handle process = StartProgram(script, "");
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
  std::signal(SIGPIPE, before);
  close(open);
  EXPECT_EQ(ExitStatus(process), 0);
  // The shell and "ls" have a descriptor each of their own. Bit 12 of the ignored signals is SIGPIPE's.
  EXPECT_THAT(Content(folder_.Path() / "report"),
              testing::MatchesRegex("0\n1\n2\n(3\n)?(4\n)?(10\n)?SigBlk:\t0+\nSigIgn:\t[0-9a-f]+[02468ace]...\n"));
}

TEST_F(StartedScript, IsKilledAndItsEndWaitedFor) {
  const Handle process = StartProgram(Write("p", "exec sleep 60\n"), "");
  EXPECT_TRUE(TerminateProgram(process));
  EXPECT_EQ(kill(static_cast<pid_t>(process), 0), -1);
  EXPECT_EQ(errno, ESRCH);  // not even as one that nobody has waited for
  EXPECT_FALSE(TerminateProgram(process));
}

TEST_F(StartedScript, OneThatHasEndedIsNotEndedAgain) {
  const Handle process = StartProgram(Write("p", "exit 0\n"), "");
  siginfo_t info{};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT), 0);
  EXPECT_FALSE(TerminateProgram(process));
  EXPECT_EQ(waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG), -1);  // taken off the list
}

TEST_F(StartedScript, WhatCannotBeStartedSaysWhy) {
  const Text folder = folder_.Path().native();
  const Text plain = folder + "/plain";
  std::ofstream(plain) << "no program";
  chmod(plain.c_str(), 0644);
  const Text broken = folder + "/broken";
  std::ofstream(broken) << "no program";
  chmod(broken.c_str(), 0755);
  const struct {
    Text program;
    int code;
    TextView reason;
  } cases[] = {
      {folder + "/missing", ENOENT, "No such file or directory"},
      {folder + "/none/missing", ENOENT, "No such file or directory"},
      {plain, EACCES, "Permission denied"},
      {plain + "/x", ENOTDIR, "Not a directory"},
      {folder, EACCES, "Permission denied"},
      {broken, ENOEXEC, "Exec format error"},
      {"", ENOENT, "No such file or directory"},
  };
  for (const auto& [program, code, reason] : cases) {
    try {
      StartProgram(program, "x");
      ADD_FAILURE() << program;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), code);
      EXPECT_EQ(error.what(), "StartProgram: " + program + ": " + Text(reason));
    }
  }
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no child is left over
  EXPECT_THROW(StartProgram(Text("/bin/true\0x", 11), ""), OsError);
  EXPECT_THROW(StartProgram("/bin/true", Text("a\0b", 3)), OsError);
}

TEST(Accounts, AreNotSupportedHere) {
  const auto expectRefused = [](const auto& call, TextView message) {
    try {
      call();
      ADD_FAILURE() << message;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), ENOTSUP);
      EXPECT_EQ(error.what(), Text(message) + ": Operation not supported");
    }
  };
  expectRefused([] { SetPriviledgeForCurrentProcess("SeTcbPrivilege"); },
                "SetPriviledgeForCurrentProcess: SeTcbPrivilege");
  expectRefused([] { static_cast<void>(CreateLogOnToken("ana", "", "", 2)); },
                "SetPriviledgeForCurrentProcess: SeTcbPrivilege");
  expectRefused([] { StartProgramAsUser("/bin/true", "", 0); },
                "SetPriviledgeForCurrentProcess: SeCreateTokenPrivilege");
}

}  // namespace
}  // namespace kiv
