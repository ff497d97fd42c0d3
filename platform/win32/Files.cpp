#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "platform/win32/Nt.h"

namespace kiv::platform {

SystemStatus OpenHandle(FileHandle& handle, const Folder& at, SystemName name, SystemCall kind,
                        const Opening& opening) noexcept {
  HANDLE opened = INVALID_HANDLE_VALUE;
  NtName ntName;
  SystemStatus status = ntName.Set(at, name);
  if (!status.Failed()) {
    status = Admitted(kind);
  }
  if (!status.Failed()) {
    OBJECT_ATTRIBUTES object{};
    InitializeObjectAttributes(&object, &ntName.Letters(), OBJ_CASE_INSENSITIVE, ntName.Root(), nullptr);
    IO_STATUS_BLOCK result{};
    status = StatusOf(NtCreateFile(&opened, opening.access | SYNCHRONIZE | FILE_READ_ATTRIBUTES, &object, &result,
                                   nullptr, FILE_ATTRIBUTE_NORMAL, opening.sharing, opening.disposition,
                                   opening.options | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0));
  }
  handle = FileHandle(AsNumber(status.Failed() ? INVALID_HANDLE_VALUE : opened));
  return status;
}

namespace {

FileTime TimeOf(const LARGE_INTEGER& time) noexcept {
  // A remainder has its dividend's sign; no file is from before 1601.
  const std::int64_t ticks = std::max<std::int64_t>(time.QuadPart, 0);
  return {ticks / kTicksPerSecond - kSecondsFrom1601To1970, static_cast<std::int32_t>(ticks % kTicksPerSecond) * 100};
}

/// Whether a reparse point is another name for something, as links and junctions are; others are files that the system
/// keeps in a way of its own.
bool IsLink(HANDLE handle) noexcept {
  FILE_ATTRIBUTE_TAG_INFO tag{};
  return GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag) != 0 && IsLinkTag(tag.ReparseTag);
}

EntryKind KindOf(HANDLE handle, DWORD attributes) noexcept {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLink(handle)) {
    return EntryKind::Link;
  }
  if (GetFileType(handle) != FILE_TYPE_DISK) {
    return EntryKind::Other;
  }
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

template <class Information>
NTSTATUS Ask(HANDLE handle, FILE_INFORMATION_CLASS kind, Information& information) noexcept {
  IO_STATUS_BLOCK result{};
  return NtQueryInformationFile(handle, &result, &information, sizeof information, kind);
}

/// The serial number of the file's volume, 0 where it has none; its name, which follows in the answer, may be cut off.
std::uint64_t VolumeOf(HANDLE handle) noexcept {
  alignas(FILE_FS_VOLUME_INFORMATION) std::array<std::byte, sizeof(FILE_FS_VOLUME_INFORMATION) + 512> answer{};
  IO_STATUS_BLOCK result{};
  NtQueryVolumeInformationFile(handle, &result, answer.data(), answer.size(), FileFsVolumeInformation);
  return reinterpret_cast<const FILE_FS_VOLUME_INFORMATION*>(answer.data())->VolumeSerialNumber;
}

// Asked piece by piece: the question for all at once builds the file's whole path, which may be too long, too.
SystemStatus QueryHandle(const FileHandle& handle, EntryInfo& info) noexcept {
  if (const SystemStatus refused = Admitted(SystemCall::Query); refused.Failed()) {
    return refused;
  }
  const HANDLE asked = AsHandle(handle.Get());
  FILE_BASIC_INFORMATION basic{};
  FILE_STANDARD_INFORMATION standard{};
  FILE_INTERNAL_INFORMATION internal{};
  for (const NTSTATUS status : {Ask(asked, FileBasicInformation, basic), Ask(asked, FileStandardInformation, standard),
                                Ask(asked, FileInternalInformation, internal)}) {
    if (status < 0) {
      return StatusOf(status);
    }
  }
  info = EntryInfo();
  info.kind = KindOf(asked, basic.FileAttributes);
  info.size = static_cast<std::uint64_t>(standard.EndOfFile.QuadPart);
  info.links = standard.NumberOfLinks;
  info.identity = {VolumeOf(asked), static_cast<std::uint64_t>(internal.IndexNumber.QuadPart)};
  info.read = TimeOf(basic.LastAccessTime);
  info.written = TimeOf(basic.LastWriteTime);
  info.attributes = basic.FileAttributes;
  return {};
}

SystemStatus SetHandleTimes(const FileHandle& handle, FileTime read, FileTime written) noexcept {
  const FILETIME lastRead = SystemFileTime(read);
  const FILETIME lastWritten = SystemFileTime(written);
  return MakeCall(SystemCall::SetTimes,
                  [&] { return SetFileTime(AsHandle(handle.Get()), nullptr, &lastRead, &lastWritten); });
}

SystemStatus SetHandleAttributes(const FileHandle& handle, const EntryInfo& like) noexcept {
  constexpr DWORD kSettable = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED |
                              FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM;
  FILE_BASIC_INFO basic{};  // times of zero stay as they are
  basic.FileAttributes = like.attributes & kSettable;
  if (basic.FileAttributes == 0) {
    basic.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  }
  return MakeCall(SystemCall::SetAttributes, [&] {
    return SetFileInformationByHandle(AsHandle(handle.Get()), FileBasicInfo, &basic, sizeof basic);
  });
}

Opening OpeningOf(OpenMode mode) noexcept {
  constexpr ACCESS_MASK kWriting = GENERIC_WRITE | FILE_WRITE_ATTRIBUTES;
  switch (mode) {
    case OpenMode::ReadFile:
    case OpenMode::ReadStream:
      return {GENERIC_READ, FILE_OPEN, FILE_NON_DIRECTORY_FILE};
    case OpenMode::ReadExclusive:
      return {GENERIC_READ, FILE_OPEN, FILE_NON_DIRECTORY_FILE, 0};
    case OpenMode::CreateNew:
      return {kWriting, FILE_CREATE, FILE_NON_DIRECTORY_FILE};
    case OpenMode::Overwrite:
      return {kWriting, FILE_OVERWRITE_IF, FILE_NON_DIRECTORY_FILE};
    case OpenMode::Append:
      return {FILE_APPEND_DATA | FILE_WRITE_ATTRIBUTES, FILE_OPEN_IF, FILE_NON_DIRECTORY_FILE};
  }
  return {};
}

SystemStatus OpenToRemove(FileHandle& handle, const Folder& at, SystemName name, ACCESS_MASK access,
                          ULONG options) noexcept {
  return OpenHandle(handle, at, name, SystemCall::Open,
                    {access, FILE_OPEN, options | FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT});
}

/// Removes an entry once nobody has it open any more.
SystemStatus Remove(FileHandle& handle) noexcept {
  FILE_DISPOSITION_INFO disposition{TRUE};
  const SystemStatus removed = MakeCall(SystemCall::Remove, [&] {
    return SetFileInformationByHandle(AsHandle(handle.Get()), FileDispositionInfo, &disposition, sizeof disposition);
  });
  const SystemStatus closed = handle.Close();
  return removed.Failed() ? removed : closed;
}

/// A link to a folder is a folder to the system, and yet no folder here.
SystemStatus WhyNotRemovedAsFile(const FileHandle& handle) noexcept {
  EntryInfo info;
  const SystemStatus asked = QueryHandle(handle, info);
  return !asked.Failed() && info.kind == EntryKind::Folder ? SystemStatus(ERROR_ACCESS_DENIED) : asked;
}

/// Gives an entry another name or, as `kind` says, one more. Links and renames have the same record.
SystemStatus SetName(SystemCall call, FILE_INFORMATION_CLASS kind, HANDLE handle, const Folder& to, SystemName newName,
                     Existing existing) noexcept {
  NtName target;
  if (const SystemStatus named = target.Set(to, newName); named.Failed()) {
    return named;
  }
  const UNICODE_STRING& letters = target.Letters();
  const ULONG size = static_cast<ULONG>(sizeof(FILE_RENAME_INFORMATION)) + letters.Length;
  const std::unique_ptr<std::byte[]> bytes(new (std::nothrow) std::byte[size]());
  if (bytes == nullptr) {
    return SystemStatus(ERROR_NOT_ENOUGH_MEMORY);
  }
  auto* const record = reinterpret_cast<FILE_RENAME_INFORMATION*>(bytes.get());
  record->ReplaceIfExists = existing == Existing::Replaced ? TRUE : FALSE;
  record->RootDirectory = target.Root();
  record->FileNameLength = letters.Length;
  std::memcpy(record->FileName, letters.Buffer, letters.Length);
  if (const SystemStatus refused = Admitted(call); refused.Failed()) {
    return refused;
  }
  IO_STATUS_BLOCK result{};
  return StatusOf(NtSetInformationFile(handle, &result, bytes.get(), size, kind));
}

}  // namespace

SystemStatus CloseSystemHandle(std::intptr_t handle) noexcept {
  const SystemStatus refused = Admitted(SystemCall::Close);
  const bool closed = CloseHandle(AsHandle(handle)) != 0;
  return refused.Failed() || closed ? refused : LastStatus();
}

const Folder& Folder::Working() noexcept {
  static const Folder working;
  return working;
}

std::size_t Folder::MostOpen() noexcept {
  return SIZE_MAX;
}

SystemStatus Folder::Open(const Folder& at, SystemName name, Links links) noexcept {
  const ULONG asItself = links == Links::Followed ? 0 : FILE_OPEN_REPARSE_POINT;
  const Opening opening = {FILE_LIST_DIRECTORY | FILE_TRAVERSE, FILE_OPEN,
                           FILE_DIRECTORY_FILE | FILE_OPEN_FOR_BACKUP_INTENT | asItself};
  const SystemStatus opened = OpenHandle(handle_, at, name, SystemCall::Open, opening);
  if (opened.Failed() || links == Links::Followed) {
    return opened;
  }
  EntryInfo info;
  SystemStatus isFolder = Query(info);
  if (!isFolder.Failed() && info.kind != EntryKind::Folder) {
    isFolder = SystemStatus(ERROR_DIRECTORY);
  }
  if (isFolder.Failed()) {
    handle_ = FileHandle();
  }
  return isFolder;
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
  return Admitted(SystemCall::Flush);
}

SystemStatus File::Open(const Folder& at, SystemName name, OpenMode mode, std::uint32_t /*permissions*/) noexcept {
  const SystemStatus opened = OpenHandle(handle_, at, name, SystemCall::Open, OpeningOf(mode));
  const bool wantsFile = mode == OpenMode::ReadFile || mode == OpenMode::ReadExclusive;
  if (!opened.Failed() && wantsFile && GetFileType(AsHandle(handle_.Get())) != FILE_TYPE_DISK) {
    handle_ = FileHandle();
    return SystemStatus(ERROR_NOT_SUPPORTED);
  }
  return opened;
}

SystemStatus File::OpenToRead(const Folder& at, SystemName name, EntryInfo& info, OpenMode mode) noexcept {
  SystemStatus opened = Open(at, name, mode);
  if (!opened.Failed()) {
    opened = Query(info);
  }
  if (opened.Failed()) {
    handle_ = FileHandle();
  }
  return opened;
}

SystemStatus File::Read(std::span<std::uint8_t> buffer, std::size_t& count) noexcept {
  DWORD got = 0;
  const auto wanted = static_cast<DWORD>(std::min<std::size_t>(buffer.size(), 1U << 30U));
  const SystemStatus done = MakeCall(
      SystemCall::Read, [&] { return ReadFile(AsHandle(handle_.Get()), buffer.data(), wanted, &got, nullptr); });
  count = done.Failed() ? 0 : got;
  // The writer of a pipe has closed it: the end.
  return done.Code() == ERROR_BROKEN_PIPE || done.Code() == ERROR_HANDLE_EOF ? SystemStatus() : done;
}

SystemStatus File::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer, std::size_t& count) const noexcept {
  count = 0;
  while (count < buffer.size() && offset + count <= std::uint64_t{INT64_MAX}) {
    const auto rest = buffer.subspan(count);
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(offset + count);
    position.OffsetHigh = static_cast<DWORD>((offset + count) >> 32U);
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(rest.size(), 1U << 30U));
    const SystemStatus done = MakeCall(
        SystemCall::Read, [&] { return ReadFile(AsHandle(handle_.Get()), rest.data(), wanted, &got, &position); });
    if (done.Code() == ERROR_HANDLE_EOF) {
      return {};
    }
    if (done.Failed() || got == 0) {
      return done;
    }
    count += got;
  }
  return {};
}

SystemStatus File::Write(std::span<const std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30U));
    const SystemStatus done = MakeCall(
        SystemCall::Write, [&] { return WriteFile(AsHandle(handle_.Get()), bytes.data(), wanted, &written, nullptr); });
    if (done.Failed()) {
      return done;
    }
    if (written == 0) {  // how a full pipe or disk is told at times
      return SystemStatus(ERROR_DISK_FULL);
    }
    bytes = bytes.subspan(written);
  }
  return {};
}

SystemStatus File::Flush() noexcept {
  return MakeCall(SystemCall::Flush, [&] { return FlushFileBuffers(AsHandle(handle_.Get())); });
}

SystemStatus File::Resize(std::uint64_t size) noexcept {
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  return MakeCall(SystemCall::Resize, [&] {
    return SetFileInformationByHandle(AsHandle(handle_.Get()), FileEndOfFileInfo, &end, sizeof end);
  });
}

SystemStatus File::Lock() noexcept {
  // One byte where no file has any: what is locked on Windows nobody else reads or writes.
  OVERLAPPED place{};
  place.Offset = 0xFFFFFFFE;
  place.OffsetHigh = 0x7FFFFFFF;
  return MakeCall(SystemCall::Lock, [&] {
    return LockFileEx(AsHandle(handle_.Get()), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place);
  });
}

bool File::IsReplacedWhileOpen() noexcept {
  return false;
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
  FileHandle handle;
  const ULONG asItself = links == Links::Followed ? 0 : FILE_OPEN_REPARSE_POINT;
  const Opening opening = {FILE_READ_ATTRIBUTES, FILE_OPEN, FILE_OPEN_FOR_BACKUP_INTENT | asItself};
  const SystemStatus opened = OpenHandle(handle, at, name, SystemCall::Open, opening);
  return opened.Failed() ? opened : QueryHandle(handle, info);
}

bool IsProtected(const EntryInfo& info) noexcept {
  return (info.attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

SystemStatus WhyNotReplaced(const EntryInfo& info) noexcept {
  if (info.kind == EntryKind::Other) {
    return SystemStatus(ERROR_NOT_SUPPORTED);
  }
  return info.kind == EntryKind::Folder || IsProtected(info) ? SystemStatus(ERROR_ACCESS_DENIED) : SystemStatus();
}

SystemStatus Rename(const Folder& from, SystemName name, const Folder& to, SystemName newName,
                    Existing existing) noexcept {
  FileHandle handle;
  // Written through: the new name is on the disk when the call ends.
  const Opening opening = {DELETE, FILE_OPEN,
                           FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT | FILE_WRITE_THROUGH};
  if (const SystemStatus opened = OpenHandle(handle, from, name, SystemCall::Open, opening); opened.Failed()) {
    return opened;
  }
  return SetName(SystemCall::Rename, FileRenameInformation, AsHandle(handle.Get()), to, newName, existing);
}

SystemStatus MakeHardLink(const Folder& from, SystemName name, const Folder& to, SystemName newName) noexcept {
  FileHandle handle;
  const Opening opening = {FILE_WRITE_ATTRIBUTES, FILE_OPEN,
                           FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT | FILE_WRITE_THROUGH};
  if (const SystemStatus opened = OpenHandle(handle, from, name, SystemCall::Open, opening); opened.Failed()) {
    return opened;
  }
  return SetName(SystemCall::Link, FileLinkInformation, AsHandle(handle.Get()), to, newName, Existing::Refused);
}

SystemStatus RemoveFile(const Folder& at, SystemName name) noexcept {
  FileHandle handle;
  const SystemStatus opened = OpenToRemove(handle, at, name, DELETE, 0);
  const SystemStatus removable = opened.Failed() ? opened : WhyNotRemovedAsFile(handle);
  return removable.Failed() ? removable : Remove(handle);
}

SystemStatus ForceRemoveFile(const Folder& at, SystemName name) noexcept {
  FileHandle handle;
  const SystemStatus opened = OpenToRemove(handle, at, name, DELETE | FILE_WRITE_ATTRIBUTES, 0);
  const SystemStatus removable = opened.Failed() ? opened : WhyNotRemovedAsFile(handle);
  if (removable.Failed()) {
    return removable;
  }
  static_cast<void>(SetHandleAttributes(handle, EntryInfo()));  // what comes of it shows when the file is removed
  return Remove(handle);
}

SystemStatus RemoveFolder(const Folder& at, SystemName name) noexcept {
  FileHandle handle;
  const SystemStatus opened = OpenToRemove(handle, at, name, DELETE, FILE_DIRECTORY_FILE);
  return opened.Failed() ? opened : Remove(handle);
}

SystemStatus MakeFolder(const Folder& at, SystemName name, std::uint32_t /*permissions*/) noexcept {
  FileHandle handle;
  return OpenHandle(handle, at, name, SystemCall::MakeFolder,
                    {FILE_LIST_DIRECTORY, FILE_CREATE, FILE_DIRECTORY_FILE | FILE_OPEN_FOR_BACKUP_INTENT});
}

}  // namespace kiv::platform
