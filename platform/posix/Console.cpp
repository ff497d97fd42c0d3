#include "platform/Console.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

constexpr int Descriptor(StandardStream stream) noexcept {
  return static_cast<int>(stream);
}

/// Repeats a call that a signal interrupted; throws OsError where it failed.
template <class Call>
std::size_t Transfer(Call&& call) {
  for (;;) {
    const ssize_t count = call();
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) {
      throw OsError(errno, SystemText(errno));
    }
  }
}

}  // namespace

PreparedConsole::PreparedConsole() {
  std::signal(SIGPIPE, SIG_IGN);
}

PreparedConsole::~PreparedConsole() = default;

std::vector<std::string> ArgumentsAsUtf8(int count, char** arguments) {
  return count > 1 ? std::vector<std::string>(arguments + 1, arguments + count) : std::vector<std::string>();
}

bool IsTerminal(StandardStream stream) noexcept {
  return isatty(Descriptor(stream)) != 0;
}

std::optional<std::filesystem::path> PathFromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::optional<std::filesystem::path>(value) : std::nullopt;
}

void WriteAll(StandardStream stream, std::string_view bytes) {
  while (!bytes.empty()) {
    bytes.remove_prefix(Transfer([&] { return write(Descriptor(stream), bytes.data(), bytes.size()); }));
  }
}

InputStream InputStream::Open(const std::filesystem::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) {
    throw OsError(errno, SystemText(errno));
  }
  return {descriptor, true};
}

InputStream InputStream::Standard() {
  return {STDIN_FILENO, false};
}

InputStream::InputStream(InputStream&& other) noexcept
    : handle_(other.handle_), owned_(std::exchange(other.owned_, false)) {}

InputStream::~InputStream() {
  if (owned_) {
    close(static_cast<int>(handle_));
  }
}

std::size_t InputStream::Read(char* into, std::size_t capacity) {
  return Transfer([&] { return read(static_cast<int>(handle_), into, capacity); });
}

std::optional<std::uint64_t> InputStream::Size() const noexcept {
  struct stat status {};
  if (fstat(static_cast<int>(handle_), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace kiv::platform
