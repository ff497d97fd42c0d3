#pragma once

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>

#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

/// Processor time for what is compared with programs: theirs is their own with all that starting them takes, whatever
/// else the machine does meanwhile.
namespace bench {

/// What this thread has used, in seconds.
inline double OwnSeconds() noexcept {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

inline double Seconds(const timeval& time) noexcept {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Waits for a child to end well; what it has used, in seconds.
inline double AwaitedSeconds(pid_t child) {
  int status = 0;
  rusage used{};
  if (wait4(child, &status, 0, &used) != child || status != 0) {
    throw std::logic_error("a program ended with " + std::to_string(status));
  }
  return Seconds(used.ru_utime) + Seconds(used.ru_stime);
}

/// Starts a program by the system's own call, with nothing to do for it.
inline pid_t Spawned(std::vector<std::string> command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& argument : command) {
    arguments.push_back(argument.data());
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", 1, 0);  // O_WRONLY
  pid_t child = 0;
  const int failure = posix_spawnp(&child, arguments[0], &quiet, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&quiet);
  if (failure != 0) {
    throw std::logic_error("cannot start " + command[0]);
  }
  return child;
}

}  // namespace bench
