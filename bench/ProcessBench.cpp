#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>

#include "kivtools/WinUtil/Processes.h"

extern char** environ;

namespace kiv {
namespace {

constexpr const char* kProgram = "/bin/true";

void Await(Handle process) {
  int status = 0;
  if (waitpid(static_cast<pid_t>(process), &status, 0) <= 0 || status != 0) {
    throw std::logic_error("the program did not run");
  }
}

Handle StartKiv() {
  return StartProgram(kProgram, "");
}

/// The system's own call with nothing planned for the child.
Handle StartBare() {
  char name[] = "/bin/true";
  char* arguments[] = {name, nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, kProgram, nullptr, nullptr, arguments, environ) != 0) {
    throw std::logic_error("posix_spawn");
  }
  return static_cast<Handle>(child);
}

void Measure(benchmark::State& state, Handle (*start)()) {
  for (auto _ : state) {
    Await(start());
  }
}

BENCHMARK_CAPTURE(Measure, kiv, &StartKiv)->Name("Processes/start/kiv")->UseRealTime();
BENCHMARK_CAPTURE(Measure, floor, &StartBare)->Name("Processes/start/floor_posix_spawn")->UseRealTime();

}  // namespace
}  // namespace kiv
