#include "apps/kivtools/system/Console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr std::size_t kMostWiped = 128;
std::atomic<std::size_t> columns_to_wipe{0};
static_assert(std::atomic<std::size_t>::is_always_lock_free, "a signal handler reads it");

/// Wipes, and lets the signal do what it does without a handler. Calls nothing that a handler may not call. The system
/// hands a signal of the terminal to the main thread, the one that draws, so nothing is drawn after the wipe.
extern "C" void WipeAndEnd(int signal) {
  if (const std::size_t columns = columns_to_wipe.load(); columns > 0) {
    std::array<char, kMostWiped + 2> bytes;
    bytes.fill(' ');
    const std::size_t last = std::min(columns, kMostWiped) + 1;
    bytes[0] = bytes[last] = '\r';
    [[maybe_unused]] const ssize_t unheard = write(STDERR_FILENO, bytes.data(), last + 1);
  }
  std::raise(signal);  // takes effect when this function returns
}

/// What is ignored stays so: a shell starts programs in the background like that.
void EndCleanlyOn(int signal) noexcept {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
    action.sa_handler = WipeAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

constexpr int Descriptor(StandardStream stream) noexcept {
  return static_cast<int>(stream);
}

}  // namespace

PreparedConsole::PreparedConsole() {
  std::signal(SIGPIPE, SIG_IGN);
  EndCleanlyOn(SIGINT);
  EndCleanlyOn(SIGTERM);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) == -1) {
      // Takes the closed one's number, the lowest that is free; for the wrong direction, so that its use still fails.
      open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

PreparedConsole::~PreparedConsole() {
  WipeWhenInterrupted(0);
}

void WipeWhenInterrupted(std::size_t columns) noexcept {
  columns_to_wipe = columns;
}

std::vector<std::string> ArgumentsAsUtf8(int count, char** arguments) {
  return count > 1 ? std::vector<std::string>(arguments + 1, arguments + count) : std::vector<std::string>();
}

std::optional<std::size_t> TerminalWidth(StandardStream stream) noexcept {
  if (isatty(Descriptor(stream)) == 0) {
    return std::nullopt;
  }
  constexpr std::size_t kUsual = 80;
  winsize size{};
  const bool told = ioctl(Descriptor(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return told ? size.ws_col : kUsual;
}

std::optional<std::filesystem::path> PathFromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::optional<std::filesystem::path>(value) : std::nullopt;
}

void WriteAll(StandardStream stream, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(Descriptor(stream), bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (const int code = errno; code != EINTR) {
      const Said name = stream == StandardStream::Output ? Say({"standard output", "ieșirea standard"})
                                                         : Say({"standard error", "ieșirea pentru erori"});
      if (code == EPIPE) {
        throw ReaderGone(name, code);
      }
      throw SystemError(name, code);
    }
  }
}

}  // namespace kivtools
