#include "apps/kivtools/system/Console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr int Descriptor(StandardStream stream) noexcept {
  return static_cast<int>(stream);
}

}  // namespace

PreparedConsole::PreparedConsole() {
  std::signal(SIGPIPE, SIG_IGN);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) == -1) {
      // Takes the closed one's number, the lowest that is free; for the wrong direction, so that its use still fails.
      open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

PreparedConsole::~PreparedConsole() = default;

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
      throw SystemError(stream == StandardStream::Output ? "standard output" : "standard error", code);
    }
  }
}

}  // namespace kivtools
