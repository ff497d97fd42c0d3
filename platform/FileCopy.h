#pragma once

#include <optional>

#include "platform/Files.h"

/// Copies of single entries of folders, by the fastest means that the system has.
namespace kiv::platform {

/// What a copy tells the next one, so that it asks the system less.
struct CopyHints {
  /// Whether the last copy found its name taken: then the next one looks for a former file first.
  bool isTaken = false;
  /// The permissions that the folder's last copy got as it asked for them: what is denied to new files has none of
  /// them. To be forgotten where the folder changes.
  std::optional<std::uint32_t> allowed;
};

/// A file that is to be copied.
class CopiedFile {
 public:
  /// Opens a regular file; everything else is refused. Both, and the name, must stay as long as this object is used.
  SystemStatus Open(const Folder& from, SystemName name) noexcept;

  [[nodiscard]] const EntryInfo& Info() const noexcept { return info_; }

  /// Copies it once to a name that nothing has yet, with its times and its attributes (on POSIX its permissions; the
  /// copy is the process's own) where the file system keeps such. Holes stay holes. After a failure the copy is gone;
  /// where something had the name, another one may be tried.
  SystemStatus CopyTo(const Folder& to, SystemName newName, CopyHints& hints);

 private:
  EntryInfo info_;
  [[maybe_unused]] File content_;                  // POSIX
  [[maybe_unused]] const Folder* from_ = nullptr;  // Windows, whose own copy opens the file
  [[maybe_unused]] SystemName name_ = nullptr;
};

/// Makes a link under a name that nothing has yet which leads where another one does.
SystemStatus CopyNewLink(const Folder& from, SystemName name, const Folder& to, SystemName newName);

/// Copies a file or a link, as `kind` says, to a name that something may have: a former file or link is there, whole,
/// until the copy is, and so is nothing in the place of a new large file. Pipes, sockets and devices are refused
/// unopened, and so is a destination that is one, is a folder or is protected from writing. What leads to one and the
/// same file stays as it is. Where the folder does not let a file be made beside the former one, that one is
/// overwritten. `hints` are those of the copies into the same folder.
SystemStatus CopyEntry(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName,
                       CopyHints& hints);

}  // namespace kiv::platform
