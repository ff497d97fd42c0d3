#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <string>

namespace kiv::platform {
namespace {

constexpr std::intptr_t kNone = -1;

}  // namespace

std::optional<ReadOnlyFile> ReadOnlyFile::Open(const std::filesystem::path& path) noexcept {
  if (path.native().find('\0') != std::string::npos) {
    return std::nullopt;  // the system would open the file named before the zero
  }
  int descriptor = -1;
  do {
    descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) {
    return std::nullopt;
  }
  struct stat status {};
  const bool regular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  ReadOnlyFile file(descriptor, regular ? static_cast<std::uint64_t>(status.st_size) : 0);
  return regular ? std::optional<ReadOnlyFile>(std::move(file)) : std::nullopt;
}

ReadOnlyFile::ReadOnlyFile(ReadOnlyFile&& other) noexcept : handle_(other.handle_), size_(other.size_) {
  other.handle_ = kNone;
}

ReadOnlyFile::~ReadOnlyFile() {
  if (handle_ != kNone) {
    close(static_cast<int>(handle_));  // not retried: after an interruption the number may already be another file's
  }
}

std::size_t ReadOnlyFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const noexcept {
  std::size_t done = 0;
  while (done < buffer.size() && offset + done <= static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
    const ssize_t got =
        pread(static_cast<int>(handle_), buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
    if (got > 0) {
      done += static_cast<std::size_t>(got);
    } else if (got == 0 || errno != EINTR) {
      break;
    }
  }
  return done;
}

}  // namespace kiv::platform
