#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>

#include "platform/FolderEntries.h"

namespace kiv::platform {

/// The folders from the first one down to the one that a walk is in, each opened by its name in the one above. Below
/// the first no link is followed, so the walk stays in its tree whatever others do to it meanwhile. There is no limit
/// to the depth: the upper folders of a deep tree are closed and opened again on the way back, if they are still where
/// they were.
class OpenFolders {
 public:
  /// Opens the first folder by its path, each further one by its name in the innermost. One that cannot be opened
  /// counts, too; nothing has a name in it.
  SystemStatus Enter(SystemName name);
  /// Goes back to the folder above.
  void Leave();

  /// How many folders have been entered.
  [[nodiscard]] std::size_t Depth() const noexcept { return levels_.size(); }
  /// Where the walk is. Valid until the folder is left.
  [[nodiscard]] const Folder& Innermost() const noexcept { return levels_.back().folder; }

 private:
  struct Level {
    Folder folder;
    FileIdentity identity;
    bool released = false;
  };

  void Release(Level& level) noexcept;
  static void Reopen(Level& level, const Folder& below) noexcept;

  std::deque<Level> levels_;  // whose elements stay where they are
};

/// A walk through a tree of folders, with the entries in the file system's order:
///
///     FolderWalk walk("/date");
///     for (FolderEntry entry; walk.Depth() > 0;) {
///       if (!walk.Next(entry)) {
///         walk.Leave();
///       } else if (entry.kind == EntryKind::Folder) {
///         walk.Enter(entry);          // its entries come next
///       } else { ... }
///     }
///
/// A folder that cannot be opened or read has no entries.
class FolderWalk {
 public:
  /// Begins in the folder of that path; a link is followed. `shown` is what Path begins with.
  FolderWalk(const std::filesystem::path& path, TextView shown);

  /// How deep the walk is, 1 in the first folder; 0 when it is over, or where the first folder could not be opened.
  [[nodiscard]] std::size_t Depth() const noexcept { return levels_.size(); }
  [[nodiscard]] const Folder& Innermost() const noexcept { return folders_.Innermost(); }
  /// The innermost folder as a text, with a separator at its end.
  [[nodiscard]] const Text& Path() const noexcept { return path_; }
  /// The innermost folder's name in the one above.
  [[nodiscard]] SystemName Name() const noexcept { return levels_.back().name; }

  /// The innermost folder's next entry; false after its last one.
  bool Next(FolderEntry& entry);
  /// Goes into a folder that Next has just given. False where that is not possible; the walk stays where it was.
  bool Enter(const FolderEntry& entry);
  void Leave();

 private:
  struct Level {
    Level(const Folder& folder, std::size_t bufferSize) : entries(folder, bufferSize) {}
    FolderEntries entries;
    std::size_t shownLength = 0;
    std::basic_string<SystemName::Letter> name;
  };

  OpenFolders folders_;
  std::deque<Level> levels_;
  Text path_;
};

}  // namespace kiv::platform
