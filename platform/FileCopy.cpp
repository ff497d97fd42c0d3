#include "platform/FileCopy.h"

#include <array>

#include "platform/SafeFile.h"

namespace kiv::platform {
namespace {

SystemStatus CopyNew(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName) {
  return kind == EntryKind::Link ? CopyNewLink(from, name, to, newName) : CopyNewFile(from, name, to, newName);
}

/// Whether two names are the same entry, or lead to it; `former` is what has the second one.
bool LeadToTheSame(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName,
                   const EntryInfo& former) noexcept {
  EntryInfo source;
  EntryInfo destination = former;
  // What is no link leads to itself; a second question is for links alone.
  for (const Links one : {Links::AsThemselves, Links::Followed}) {
    if ((one == Links::Followed && kind != EntryKind::Link) || Query(from, name, one, source).Failed()) {
      continue;
    }
    if (source.identity == former.identity) {
      return true;
    }
    if (former.kind == EntryKind::Link && !Query(to, newName, Links::Followed, destination).Failed() &&
        source.identity == destination.identity) {
      return true;
    }
  }
  return false;
}

SystemStatus CopyContent(File& from, File& to) {
  std::array<std::uint8_t, 65'536> buffer;
  for (;;) {
    std::size_t count = 0;
    if (const SystemStatus read = from.Read(buffer, count); read.Failed() || count == 0) {
      return read;
    }
    if (const SystemStatus written = to.Write({buffer.data(), count}); written.Failed()) {
      return written;
    }
  }
}

SystemStatus Overwrite(const Folder& from, SystemName name, const Folder& to, SystemName newName) {
  File source;
  EntryInfo info;
  if (const SystemStatus opened = source.OpenToRead(from, name, info); opened.Failed()) {
    return opened;
  }
  File destination;
  if (const SystemStatus opened = destination.Open(to, newName, OpenMode::Overwrite); opened.Failed()) {
    return opened;
  }
  const SystemStatus copied = CopyContent(source, destination);
  static_cast<void>(destination.SetTimes(info.read, info.written));
  const SystemStatus closed = destination.Close();
  return copied.Failed() ? copied : closed;
}

SystemStatus Replace(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName) {
  EntryInfo former;
  SystemStatus done = Query(to, newName, Links::AsThemselves, former);
  if (!done.Failed()) {
    done = WhyNotReplaced(former);
  }
  if (done.Failed() || LeadToTheSame(from, name, kind, to, newName, former)) {
    return done;
  }
  const std::filesystem::path beside = TemporaryName(newName.Get());
  done = CopyNew(from, name, kind, to, beside);
  if (!done.Failed()) {
    done = Rename(to, beside, to, newName, Existing::Replaced);
    if (done.Failed()) {
      static_cast<void>(RemoveFile(to, beside));
    }
  }
  const bool areFiles = kind == EntryKind::File && former.kind == EntryKind::File;
  return done.IsDenied() && areFiles ? Overwrite(from, name, to, newName) : done;
}

}  // namespace

SystemStatus CopyEntry(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName) {
  if (kind != EntryKind::File && kind != EntryKind::Link) {
    EntryInfo info;
    info.kind = kind;
    return WhyNotReplaced(info);
  }
  const SystemStatus done = CopyNew(from, name, kind, to, newName);
  return done.IsExisting() ? Replace(from, name, kind, to, newName) : done;
}

}  // namespace kiv::platform
