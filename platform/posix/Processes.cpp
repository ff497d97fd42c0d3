#include "platform/Processes.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <limits>
#include <system_error>
#include <vector>

#include "core/Parameters.h"
#include "platform/ZeroInText.h"
#include "platform/posix/Call.h"

extern char** environ;

namespace kiv::platform {
namespace {

/// Calls of the spawn family give the error's code instead of setting errno.
SystemStatus StatusOf(int code) noexcept {
  return SystemStatus(code);
}

/// What the child does before it becomes the program.
class ChildSteps {
 public:
  ChildSteps() noexcept : status_(posix_spawn_file_actions_init(&steps_)) {
    if (!status_.Failed()) {
      status_ = StatusOf(posix_spawnattr_init(&attributes_));
      if (status_.Failed()) {
        posix_spawn_file_actions_destroy(&steps_);
      }
    }
    made_ = !status_.Failed();
  }
  ~ChildSteps() {
    if (made_) {
      posix_spawn_file_actions_destroy(&steps_);
      posix_spawnattr_destroy(&attributes_);
    }
  }
  ChildSteps(const ChildSteps&) = delete;
  ChildSteps& operator=(const ChildSteps&) = delete;

  /// The standard streams stay, whatever else this process has open does not reach the program; signals that this
  /// process ignores or holds back are nothing to the program.
  SystemStatus Plan(const Text& folder) noexcept {
    sigset_t none;
    sigset_t pipe;
    sigemptyset(&none);
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    Then([&] { return posix_spawnattr_setsigmask(&attributes_, &none); });
    Then([&] { return posix_spawnattr_setsigdefault(&attributes_, &pipe); });
    Then([&] { return posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF); });
    if (!folder.empty()) {
      Then([&] { return posix_spawn_file_actions_addchdir_np(&steps_, folder.c_str()); });
    }
    Then([&] { return posix_spawn_file_actions_addclosefrom_np(&steps_, STDERR_FILENO + 1); });
    return status_;
  }

  SystemStatus Start(const Text& file, const std::vector<char*>& arguments, pid_t& child) noexcept {
    Then([&] { return posix_spawn(&child, file.c_str(), &steps_, &attributes_, arguments.data(), environ); });
    return status_;
  }

 private:
  template <class Step>
  void Then(Step&& step) noexcept {
    if (!status_.Failed()) {
      status_ = StatusOf(step());
    }
  }

  posix_spawn_file_actions_t steps_{};
  posix_spawnattr_t attributes_{};
  SystemStatus status_;
  bool made_ = false;
};

/// A relative path means a file seen from this process's folder, not from the one that the child goes to first.
SystemStatus FromHere(TextView program, Text& file) {
  file = program;
  if (file.empty() || file.front() == '/') {
    return {};
  }
  std::error_code failure;
  const std::filesystem::path here = std::filesystem::current_path(failure);
  if (failure) {
    return SystemStatus(failure.value());
  }
  file = (here / file).native();
  return {};
}

/// The process number in a handle; 0 for what is none. Numbers below 1 would mean whole groups of processes.
pid_t ProcessNumber(Handle process) noexcept {
  return process <= static_cast<Handle>(std::numeric_limits<pid_t>::max()) ? static_cast<pid_t>(process) : 0;
}

}  // namespace

SystemStatus StartProcess(TextView program, TextView parameters, TextView folder, Handle& process) {
  if (HasZero(program) || HasZero(parameters)) {
    return SystemStatus(EINVAL);  // the system would take what is before the zero
  }
  Text file;
  if (const SystemStatus found = FromHere(program, file); found.Failed()) {
    return found;
  }
  StringList texts = SplitParameters(parameters);
  texts.insert(texts.begin(), Text(program));
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (Text& text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);

  ChildSteps steps;
  const Text workingFolder(folder);
  if (const SystemStatus planned = steps.Plan(workingFolder); planned.Failed()) {
    return planned;
  }
  pid_t child = 0;
  const SystemStatus started = steps.Start(file, arguments, child);
  if (!started.Failed()) {
    process = static_cast<Handle>(child);
  }
  return started;
}

SystemStatus EndProcess(Handle process, std::uint32_t /*exitCode*/) noexcept {
  const pid_t child = ProcessNumber(process);
  if (child == 0) {
    return SystemStatus(ESRCH);
  }
  int status = 0;
  if (waitpid(child, &status, WNOHANG) == child) {
    return SystemStatus(ESRCH);  // it had ended by itself
  }
  if (kill(child, SIGKILL) != 0) {
    return LastStatus();
  }
  // Whose child it is not, another process waits for.
  while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
  }
  return {};
}

}  // namespace kiv::platform
