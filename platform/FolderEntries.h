#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/Files.h"

namespace kiv::platform {

/// An entry as the folder's list has it.
struct FolderEntry {
  SystemName name = nullptr;  ///< valid until the next entry is asked for
  NativeView letters;         ///< the name's own, without the zero
  NativeView shortName;       ///< Windows: another name of the entry, without letters of its own; often empty
  EntryKind kind = EntryKind::Other;
};

/// Puts the entry's name behind a path. On Windows as Windows-1250: an entry with letters outside the code page is
/// named by its short name, and where it has none with "?" for each such letter, which no name can have.
void AppendName(const FolderEntry& entry, Text& path);

/// The entries of a folder in the file system's order, without "." and "..". One system call for a few hundred of them,
/// and none for each.
///
///     FolderEntries entries(folder);
///     FolderEntry entry;
///     for (bool more = true; more;) {
///       entries.Next(entry, more).OrThrow("InitFileList", path);
///       ...
///
/// Entries that are made or removed during the walk may or may not be among them.
class FolderEntries {
 public:
  /// Starts at the folder's beginning. The folder must stay open as long as this object is used. `bufferSize` bytes are
  /// what one call brings, 1,024 at least.
  explicit FolderEntries(const Folder& folder, std::size_t bufferSize = 32'768);

  /// The next entry; `found` is false after the last one and after a failure.
  SystemStatus Next(FolderEntry& entry, bool& found);

  /// Reads what is left, so that the folder may be closed and opened again. On Windows, where nobody has to, it does
  /// nothing.
  SystemStatus Detach();

 private:
  SystemStatus Fill(bool& found) noexcept;

  const Folder& folder_;
  std::size_t capacity_;
  std::unique_ptr<std::byte[]> buffer_;
  std::size_t filled_ = 0;
  std::size_t at_ = 0;
  bool started_ = false;
  [[maybe_unused]] bool complete_ = false;      // POSIX: all is in the buffer
  std::basic_string<SystemName::Letter> name_;  // Windows: the list's own names have no zero at their end
};

}  // namespace kiv::platform
