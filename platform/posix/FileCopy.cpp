#include "platform/FileCopy.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/posix/Call.h"
#include "platform/posix/Descriptor.h"

namespace kiv::platform {
namespace {

using Buffer = std::array<std::uint8_t, 65'536>;

/// Copies what is between the files' positions and the source's end by way of this process. Once as many bytes have
/// come as the file has, nobody asks whether there are more.
SystemStatus CopyRest(File& from, File& to, std::uint64_t expected) {
  Buffer buffer;
  for (std::uint64_t copied = 0;;) {
    std::size_t count = 0;
    if (const SystemStatus read = from.Read(buffer, count); read.Failed() || count == 0) {
      return read;
    }
    if (const SystemStatus written = to.Write({buffer.data(), count}); written.Failed()) {
      return written;
    }
    copied += count;
    if (copied == expected) {
      return {};
    }
  }
}

/// Lets the system copy a range at both files' positions: it shares the blocks, asks the server or copies by itself, as
/// the file system can. `count` is what is left of the range.
SystemStatus CopyRange(const File& from, const File& to, std::uint64_t& count) noexcept {
  while (count > 0) {
    ssize_t copied = 0;
    const SystemStatus done = MakeCall(SystemCall::Copy, copied, [&] {
      const std::size_t wanted = std::min<std::uint64_t>(count, std::uint64_t{1} << 30U);
      return copy_file_range(Descriptor(from.Handle()), nullptr, Descriptor(to.Handle()), nullptr, wanted, 0);
    });
    if (done.Failed() || copied == 0) {
      return done;
    }
    count -= static_cast<std::uint64_t>(copied);
  }
  return {};
}

SystemStatus MoveTo(const File& file, off_t position) noexcept {
  return lseek(Descriptor(file.Handle()), position, SEEK_SET) == position ? SystemStatus() : LastStatus();
}

/// Gives the copy the length that the source has, if it ends in a hole; a source cut off meanwhile has no zeros there.
SystemStatus Lengthen(const File& from, File& to, std::uint64_t size) noexcept {
  EntryInfo now;
  const SystemStatus asked = from.Query(now);
  return asked.Failed() ? asked : to.Resize(std::min(size, now.size));
}

/// Whether the failure says that these two files cannot be copied by the system, rather than that copying failed.
bool IsNoMeans(SystemStatus status) noexcept {
  switch (status.Code()) {
    case EXDEV:
    case EINVAL:
    case ENOSYS:
    case EOPNOTSUPP:
    case EPERM:
    case EBADF:
    case ETXTBSY:
      return true;
    default:
      return false;
  }
}

/// Copies stretch by stretch what has been written of a large file; what has not stays a hole.
SystemStatus CopyStretches(File& from, File& to, std::uint64_t size) {
  const int source = Descriptor(from.Handle());
  const auto end = static_cast<off_t>(size);
  for (off_t at = 0; at < end;) {
    off_t start = lseek(source, at, SEEK_DATA);
    if (start == -1) {
      if (errno == ENXIO) {
        break;  // nothing but a hole up to the end
      }
      start = at;
    }
    off_t stop = lseek(source, start, SEEK_HOLE);
    stop = stop <= start || stop > end ? end : stop;
    if (start >= end) {
      break;
    }
    SystemStatus copied = MoveTo(from, start);
    if (!copied.Failed()) {
      copied = MoveTo(to, start);
    }
    if (copied.Failed()) {
      return copied;
    }
    auto count = static_cast<std::uint64_t>(stop - start);
    copied = CopyRange(from, to, count);
    if (copied.Failed() && !IsNoMeans(copied)) {
      return copied;
    }
    if (count > 0) {  // no means, or the file has become shorter: what reads says which
      return CopyRest(from, to, size - static_cast<std::uint64_t>(stop) + count);
    }
    at = stop;
  }
  return Lengthen(from, to, size);
}

SystemStatus CopyContent(File& from, File& to, std::uint64_t size) {
  return size <= Buffer().size() ? CopyRest(from, to, size) : CopyStretches(from, to, size);
}

/// What the process masks has not come through when the file was made.
void KeepPermissions(const File& copy, std::uint32_t permissions, CopyHints& hints) noexcept {
  EntryInfo made;
  if (hints.allowed == permissions || copy.Query(made).Failed()) {
    return;
  }
  if (made.attributes == permissions) {
    hints.allowed = permissions;
    return;
  }
  static_cast<void>(
      MakeCall(SystemCall::SetAttributes, [&] { return fchmod(Descriptor(copy.Handle()), permissions); }));
}

}  // namespace

SystemStatus CopiedFile::Open(const Folder& from, SystemName name) noexcept {
  return content_.OpenToRead(from, name, info_);
}

SystemStatus CopiedFile::CopyTo(const Folder& to, SystemName newName, CopyHints& hints) {
  const std::uint32_t permissions = info_.attributes & 0777U;
  File copy;
  if (const SystemStatus made = copy.Open(to, newName, OpenMode::CreateNew, permissions); made.Failed()) {
    return made;
  }
  SystemStatus done = CopyContent(content_, copy, info_.size);
  if (!done.Failed()) {
    // A file system that keeps no permissions or times is no reason not to copy.
    KeepPermissions(copy, permissions, hints);
    static_cast<void>(copy.SetTimes(info_.read, info_.written));
  }
  const SystemStatus closed = copy.Close();
  done = done.Failed() ? done : closed;
  if (done.Failed()) {
    static_cast<void>(RemoveFile(to, newName));
  }
  return done;
}

SystemStatus CopyNewLink(const Folder& from, SystemName name, const Folder& to, SystemName newName) {
  std::array<char, PATH_MAX> target;
  ssize_t length = 0;
  const SystemStatus read = MakeCall(
      SystemCall::Read, length, [&] { return readlinkat(Base(from), name.Get(), target.data(), target.size() - 1); });
  if (read.Failed()) {
    return read;
  }
  target[static_cast<std::size_t>(length)] = '\0';
  return MakeCall(SystemCall::Link, [&] { return symlinkat(target.data(), Base(to), newName.Get()); });
}

}  // namespace kiv::platform
