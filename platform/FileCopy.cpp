#include "platform/FileCopy.h"

#include <array>

#include "platform/SafeFile.h"

namespace kiv::platform {
namespace {

/// Larger ones take their time, in which the process may be ended.
constexpr std::uint64_t kSmallFile = 65'536;

std::optional<FileIdentity> Identity(const Folder& at, SystemName name, Links links) noexcept {
  EntryInfo info;
  return Query(at, name, links, info).Failed() ? std::nullopt : std::optional(info.identity);
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

/// A file or a link on its way.
class EntryCopy {
 public:
  EntryCopy(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName, CopyHints& hints)
      : from_(from), name_(name), kind_(kind), to_(to), newName_(newName), hints_(hints) {}

  SystemStatus Run() {
    if (kind_ == EntryKind::File) {
      if (const SystemStatus opened = file_.Open(from_, name_); opened.Failed()) {
        return opened;
      }
    }
    const bool isSmall = kind_ == EntryKind::Link || file_.Info().size <= kSmallFile;
    if (isSmall && !hints_.isTaken) {
      const SystemStatus made = CopyTo(newName_);
      if (!made.IsExisting()) {
        return made;
      }
    }
    EntryInfo former;
    const SystemStatus found = Query(to_, newName_, Links::AsThemselves, former);
    hints_.isTaken = !found.Failed();
    if (found.IsMissing()) {
      return isSmall ? CopyTo(newName_) : CopyBeside();
    }
    return found.Failed() ? found : Replace(former);
  }

 private:
  SystemStatus CopyTo(SystemName newName) {
    return kind_ == EntryKind::Link ? CopyNewLink(from_, name_, to_, newName) : file_.CopyTo(to_, newName, hints_);
  }

  SystemStatus CopyBeside() {
    NativeString beside;
    SystemStatus done =
        UnderTemporaryName(newName_.Get(), beside, [this](SystemName temporary) { return CopyTo(temporary); });
    if (!done.Failed()) {
      done = Rename(to_, beside, to_, newName_, Existing::Replaced);
      if (done.Failed()) {
        static_cast<void>(RemoveFile(to_, beside));
      }
    }
    return done;
  }

  SystemStatus Replace(const EntryInfo& former) {
    if (const SystemStatus refused = WhyNotReplaced(former); refused.Failed() || LeadToTheSame(former)) {
      return refused;
    }
    const SystemStatus done = CopyBeside();
    const bool areFiles = kind_ == EntryKind::File && former.kind == EntryKind::File;
    return done.IsDenied() && areFiles ? Overwrite(from_, name_, to_, newName_) : done;
  }

  /// Whether the two names are the same entry, or lead to it; `former` is what has the second one.
  [[nodiscard]] bool LeadToTheSame(const EntryInfo& former) const noexcept {
    std::optional<FileIdentity> target;
    if (former.kind == EntryKind::Link) {
      target = Identity(to_, newName_, Links::Followed);
    }
    const auto isFormer = [&](std::optional<FileIdentity> source) {
      return source && (source == former.identity || source == target);
    };
    if (kind_ == EntryKind::File) {
      return isFormer(file_.Info().identity);
    }
    return isFormer(Identity(from_, name_, Links::AsThemselves)) || isFormer(Identity(from_, name_, Links::Followed));
  }

  const Folder& from_;
  SystemName name_;
  EntryKind kind_;
  const Folder& to_;
  SystemName newName_;
  CopyHints& hints_;
  CopiedFile file_;
};

}  // namespace

SystemStatus CopyEntry(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName,
                       CopyHints& hints) {
  if (kind != EntryKind::File && kind != EntryKind::Link) {
    EntryInfo info;
    info.kind = kind;
    return WhyNotReplaced(info);
  }
  return EntryCopy(from, name, kind, to, newName, hints).Run();
}

}  // namespace kiv::platform
