// start_and_end_calls.py makes system calls of this program fail: it starts a program, ends it, and says what came of
// it and whether anything was left behind.
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "kivtools/WinUtil/Processes.h"

namespace {

std::ptrdiff_t OpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

}  // namespace

int main(int /*count*/, char** arguments) {
  const std::ptrdiff_t before = OpenFiles();
  kiv::Handle process = 0;
  try {
    process = kiv::StartProgram(arguments[1], "8");
    std::puts("started");
    std::fflush(stdout);
    std::puts(kiv::TerminateProgram(process) ? "ended" : "not ended");
  } catch (const kiv::OsError& error) {
    std::printf("%s (%d)\n", error.what(), error.Code());
  }
  if (OpenFiles() != before) {
    std::puts("a file is open");
  }
  if (waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD) {
    std::puts("a child is left");
    kiv::TerminateProgram(process);
  }
  return 0;
}
