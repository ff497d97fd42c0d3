#include "platform/Files.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <limits>

#include "platform/posix/Call.h"
#include "platform/posix/Descriptor.h"

namespace kiv::platform {
namespace {

SystemStatus OpenHandle(FileHandle& handle, const Folder& at, SystemName name, int flags, mode_t permissions) noexcept {
  int descriptor = -1;
  const SystemStatus opened = MakeCall(SystemCall::Open, descriptor, [&] {
    return openat(Base(at), name.Get(), flags | O_CLOEXEC | O_NOCTTY, permissions);
  });
  handle = FileHandle(descriptor);
  return opened;
}

EntryKind KindOf(mode_t mode) noexcept {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return EntryKind::File;
    case S_IFDIR:
      return EntryKind::Folder;
    case S_IFLNK:
      return EntryKind::Link;
    default:
      return EntryKind::Other;
  }
}

FileTime TimeOf(const timespec& time) noexcept {
  return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
}

timespec TimeOf(FileTime time) noexcept {
  return {time.seconds, time.nanoseconds};
}

EntryInfo InfoOf(const struct stat& status) noexcept {
  EntryInfo info;
  info.kind = KindOf(status.st_mode);
  info.size = static_cast<std::uint64_t>(status.st_size);
  info.links = status.st_nlink;
  info.identity = {status.st_dev, status.st_ino};
  info.read = TimeOf(status.st_atim);
  info.written = TimeOf(status.st_mtim);
  info.attributes = status.st_mode & 07777U;
  info.owner = status.st_uid;
  info.group = status.st_gid;
  return info;
}

SystemStatus QueryHandle(const FileHandle& handle, EntryInfo& info) noexcept {
  struct stat status {};
  const SystemStatus asked = MakeCall(SystemCall::Query, [&] { return fstat(Descriptor(handle), &status); });
  if (!asked.Failed()) {
    info = InfoOf(status);
  }
  return asked;
}

SystemStatus SetHandleTimes(const FileHandle& handle, FileTime read, FileTime written) noexcept {
  const std::array<timespec, 2> times = {TimeOf(read), TimeOf(written)};
  return MakeCall(SystemCall::SetTimes, [&] { return futimens(Descriptor(handle), times.data()); });
}

SystemStatus SetHandleAttributes(const FileHandle& handle, const EntryInfo& like) noexcept {
  // Only the superuser may give files away; the bits that lend the owner's rights are for the same owner alone.
  const bool sameOwner = fchown(Descriptor(handle), like.owner, like.group) == 0;
  const mode_t permissions = like.attributes & (sameOwner ? 07777U : 0777U);
  return MakeCall(SystemCall::SetAttributes, [&] { return fchmod(Descriptor(handle), permissions); });
}

SystemStatus WhyNoFile(EntryKind kind) noexcept {
  switch (kind) {
    case EntryKind::File:
      return {};
    case EntryKind::Folder:
      return SystemStatus(EISDIR);
    default:
      return SystemStatus(EOPNOTSUPP);
  }
}

/// Ends with the descriptor. Where a file system has no locks, nobody else has one either.
SystemStatus LockAgainstOthers(const FileHandle& handle, SystemCall kind) noexcept {
  const SystemStatus locked = MakeCall(kind, [&] { return flock(Descriptor(handle), LOCK_EX | LOCK_NB); });
  const bool noLocks = locked.Code() == EBADF || locked.Code() == EINVAL || locked.Code() == ENOLCK ||
                       locked.Code() == ENOSYS || locked.Code() == EOPNOTSUPP;
  return noLocks ? SystemStatus() : locked;
}

int FlagsOf(OpenMode mode) noexcept {
  switch (mode) {
    case OpenMode::ReadFile:
    case OpenMode::ReadExclusive:
      return O_RDONLY | O_NONBLOCK;
    case OpenMode::ReadStream:
      return O_RDONLY;
    case OpenMode::CreateNew:
      return O_WRONLY | O_CREAT | O_EXCL;
    case OpenMode::Overwrite:
      return O_WRONLY | O_CREAT | O_TRUNC;
    case OpenMode::Append:
      return O_WRONLY | O_CREAT | O_APPEND;
  }
  return O_RDONLY;
}

}  // namespace

SystemStatus CloseSystemHandle(std::intptr_t handle) noexcept {
  const SystemStatus refused = Admitted(SystemCall::Close);
  // An interrupted close has closed.
  const bool closed = close(static_cast<int>(handle)) == 0 || errno == EINTR;
  return refused.Failed() || closed ? refused : LastStatus();
}

const Folder& Folder::Working() noexcept {
  static const Folder working;
  return working;
}

std::size_t Folder::MostOpen() noexcept {
  return 32;  // a process may have 256 files open on the thriftiest systems
}

SystemStatus Folder::Open(const Folder& at, SystemName name, Links links) noexcept {
  const int followed = links == Links::Followed ? 0 : O_NOFOLLOW;
  return OpenHandle(handle_, at, name, O_RDONLY | O_DIRECTORY | followed, 0);
}

SystemStatus Folder::Query(EntryInfo& info) const noexcept {
  return QueryHandle(handle_, info);
}

SystemStatus Folder::SetTimes(FileTime read, FileTime written) noexcept {
  return SetHandleTimes(handle_, read, written);
}

SystemStatus Folder::SetAttributes(const EntryInfo& like) noexcept {
  return SetHandleAttributes(handle_, like);
}

SystemStatus Folder::Flush() const noexcept {
  const SystemStatus flushed = MakeCall(SystemCall::Flush, [&] { return fsync(Descriptor(handle_)); });
  // Some file systems have no such thing for folders.
  return flushed.Code() == EINVAL ? SystemStatus() : flushed;
}

SystemStatus File::Open(const Folder& at, SystemName name, OpenMode mode, std::uint32_t permissions) noexcept {
  if (mode == OpenMode::ReadFile || mode == OpenMode::ReadExclusive) {
    EntryInfo info;
    return OpenToRead(at, name, info, mode);
  }
  return OpenHandle(handle_, at, name, FlagsOf(mode), permissions);
}

SystemStatus File::OpenToRead(const Folder& at, SystemName name, EntryInfo& info, OpenMode mode) noexcept {
  SystemStatus opened = OpenHandle(handle_, at, name, FlagsOf(mode), 0);
  if (!opened.Failed()) {
    opened = Query(info);
  }
  if (!opened.Failed()) {
    opened = WhyNoFile(info.kind);
  }
  if (!opened.Failed() && mode == OpenMode::ReadExclusive) {
    opened = LockAgainstOthers(handle_, SystemCall::Open);
  }
  if (opened.Failed()) {
    handle_ = FileHandle();
  }
  return opened;
}

SystemStatus File::Read(std::span<std::uint8_t> buffer, std::size_t& count) noexcept {
  ssize_t got = 0;
  const SystemStatus done =
      MakeCall(SystemCall::Read, got, [&] { return read(Descriptor(handle_), buffer.data(), buffer.size()); });
  count = done.Failed() ? 0 : static_cast<std::size_t>(got);
  return done;
}

SystemStatus File::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer, std::size_t& count) const noexcept {
  count = 0;
  while (count < buffer.size() && offset + count <= std::uint64_t{std::numeric_limits<off_t>::max()}) {
    const auto rest = buffer.subspan(count);
    ssize_t got = 0;
    const SystemStatus done = MakeCall(SystemCall::Read, got, [&] {
      return pread(Descriptor(handle_), rest.data(), rest.size(), static_cast<off_t>(offset + count));
    });
    if (done.Failed() || got == 0) {
      return done;
    }
    count += static_cast<std::size_t>(got);
  }
  return {};
}

SystemStatus File::Write(std::span<const std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    ssize_t written = 0;
    const SystemStatus done =
        MakeCall(SystemCall::Write, written, [&] { return write(Descriptor(handle_), bytes.data(), bytes.size()); });
    if (done.Failed()) {
      return done;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return {};
}

SystemStatus File::Flush() noexcept {
  return MakeCall(SystemCall::Flush, [&] { return fsync(Descriptor(handle_)); });
}

SystemStatus File::Resize(std::uint64_t size) noexcept {
  if (size > std::uint64_t{std::numeric_limits<off_t>::max()}) {
    return SystemStatus(EFBIG);
  }
  return MakeCall(SystemCall::Resize, [&] { return ftruncate(Descriptor(handle_), static_cast<off_t>(size)); });
}

SystemStatus File::Lock() noexcept {
  return LockAgainstOthers(handle_, SystemCall::Lock);
}

bool File::IsReplacedWhileOpen() noexcept {
  return true;
}

SystemStatus File::Query(EntryInfo& info) const noexcept {
  return QueryHandle(handle_, info);
}

SystemStatus File::SetTimes(FileTime read, FileTime written) noexcept {
  return SetHandleTimes(handle_, read, written);
}

SystemStatus File::SetAttributes(const EntryInfo& like) noexcept {
  return SetHandleAttributes(handle_, like);
}

SystemStatus Query(const Folder& at, SystemName name, Links links, EntryInfo& info) noexcept {
  struct stat status {};
  const int flags = links == Links::Followed ? 0 : AT_SYMLINK_NOFOLLOW;
  const SystemStatus asked = MakeCall(SystemCall::Query, [&] { return fstatat(Base(at), name.Get(), &status, flags); });
  if (!asked.Failed()) {
    info = InfoOf(status);
  }
  return asked;
}

bool IsProtected(const EntryInfo& info) noexcept {
  return (info.attributes & 0222U) == 0;
}

SystemStatus WhyNotReplaced(const EntryInfo& info) noexcept {
  if (info.kind == EntryKind::Link) {
    return {};
  }
  const SystemStatus noFile = WhyNoFile(info.kind);
  return noFile.Failed() || !IsProtected(info) ? noFile : SystemStatus(EACCES);
}

SystemStatus Rename(const Folder& from, SystemName name, const Folder& to, SystemName newName,
                    Existing existing) noexcept {
  const unsigned flags = existing == Existing::Replaced ? 0 : RENAME_NOREPLACE;
  return MakeCall(SystemCall::Rename,
                  [&] { return renameat2(Base(from), name.Get(), Base(to), newName.Get(), flags); });
}

SystemStatus MakeHardLink(const Folder& from, SystemName name, const Folder& to, SystemName newName) noexcept {
  return MakeCall(SystemCall::Link, [&] { return linkat(Base(from), name.Get(), Base(to), newName.Get(), 0); });
}

SystemStatus RemoveFile(const Folder& at, SystemName name) noexcept {
  return MakeCall(SystemCall::Remove, [&] { return unlinkat(Base(at), name.Get(), 0); });
}

SystemStatus ForceRemoveFile(const Folder& at, SystemName name) noexcept {
  return RemoveFile(at, name);  // what a file's permissions forbid does not concern its name
}

SystemStatus RemoveFolder(const Folder& at, SystemName name) noexcept {
  return MakeCall(SystemCall::Remove, [&] { return unlinkat(Base(at), name.Get(), AT_REMOVEDIR); });
}

SystemStatus MakeFolder(const Folder& at, SystemName name, std::uint32_t permissions) noexcept {
  return MakeCall(SystemCall::MakeFolder, [&] { return mkdirat(Base(at), name.Get(), permissions); });
}

}  // namespace kiv::platform
