#include <benchmark/benchmark.h>

#include "CpuTime.h"
#include "kivtools/WinUtil/Processes.h"

namespace kiv {
namespace {

constexpr const char* kProgram = "/bin/true";

pid_t StartKiv() {
  return static_cast<pid_t>(StartProgram(kProgram, ""));
}

/// The system's own call with nothing planned for the child.
pid_t StartBare() {
  char name[] = "/bin/true";
  char* arguments[] = {name, nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, kProgram, nullptr, nullptr, arguments, environ) != 0) {
    throw std::logic_error("posix_spawn");
  }
  return child;
}

/// Processor time of both sides: the wait for a processor tells nothing about the call.
void Measure(benchmark::State& state, pid_t (*start)()) {
  for (auto _ : state) {
    const double before = bench::OwnSeconds();
    const pid_t child = start();
    const double own = bench::OwnSeconds() - before;
    state.SetIterationTime(own + bench::AwaitedSeconds(child));
  }
}

BENCHMARK_CAPTURE(Measure, kiv, &StartKiv)->Name("Processes/start/kiv")->UseManualTime();
BENCHMARK_CAPTURE(Measure, floor, &StartBare)->Name("Processes/start/floor_posix_spawn")->UseManualTime();

}  // namespace
}  // namespace kiv
