#include "apps/kivtools/system/InputStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr std::intptr_t kNone = -1;

}  // namespace

InputStream InputStream::Open(const std::filesystem::path& path, What what) {
  std::string name = ShownName(Utf8FromPath(path));
  // Without waiting: a pipe that nobody writes to would hold the program up before it is known to be one.
  const int waiting = what == What::File ? O_NONBLOCK : 0;
  int descriptor = kNone;
  do {
    descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | waiting);
  } while (descriptor < 0 && errno == EINTR);
  if (const int code = errno; descriptor < 0) {
    throw SystemError(CannotBeOpened(name), code);
  }
  InputStream stream(descriptor, true, std::move(name));
  struct stat status {};
  if (fstat(descriptor, &status) != 0) {
    const int code = errno;
    throw SystemError(CannotBeOpened(stream.name_), code);
  }
  if (S_ISDIR(status.st_mode) || (what == What::File && !S_ISREG(status.st_mode))) {
    throw InputError(S_ISDIR(status.st_mode) ? IsAFolder(stream.name_) : IsNotAFile(stream.name_));
  }
  return stream;
}

InputStream InputStream::Standard() {
  return {STDIN_FILENO, false, Say({"standard input", "intrarea standard"}).Text()};
}

InputStream::InputStream(InputStream&& other) noexcept
    : handle_(other.handle_), owned_(std::exchange(other.owned_, false)), name_(std::move(other.name_)) {}

InputStream::~InputStream() {
  if (owned_) {
    close(static_cast<int>(handle_));
  }
}

std::size_t InputStream::Read(char* into, std::size_t capacity) {
  for (;;) {
    const ssize_t count = read(static_cast<int>(handle_), into, capacity);
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (const int code = errno; code != EINTR) {
      throw SystemError(CannotBeRead(name_), code);
    }
  }
}

std::optional<std::uint64_t> InputStream::Size() const noexcept {
  struct stat status {};
  if (fstat(static_cast<int>(handle_), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace kivtools
