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
///
/// Where the process may have no more files open, GiveBack gives up one of these for another.
class OpenFolders {
 public:
  /// Opens the first folder by its path, each further one by its name in the innermost. One that cannot be opened
  /// counts, too; nothing has a name in it.
  SystemStatus Enter(SystemName name);
  /// Goes back to the folder above; fails where that one is not to be found any more, and nothing has a name in it.
  SystemStatus Leave();

  /// The level, from 0, of the uppermost folder that is open, and of the one that will be when Enter has made room.
  [[nodiscard]] std::size_t FirstOpen() const noexcept { return firstOpen_; }
  [[nodiscard]] std::size_t FirstKept() const noexcept;
  /// Closes that uppermost folder and keeps fewer open from now on; false where the innermost one alone is open.
  bool GiveBack() noexcept;

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

  void ReleaseUpTo(std::size_t level) noexcept;
  static void Release(Level& level) noexcept;
  static SystemStatus Reopen(Level& level, const Folder& below) noexcept;

  std::deque<Level> levels_;  // whose elements stay where they are
  std::size_t firstOpen_ = 0;
  std::size_t mostOpen_ = Folder::MostOpen();
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
/// A folder that cannot be opened or read has no entries, and Failure says why.
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

  /// Why the last Next or Enter gave false, or the first folder could not be opened; no failure at a folder's end.
  [[nodiscard]] SystemStatus Failure() const noexcept { return failure_; }
  /// Gives up a handle for others, see OpenFolders.
  bool GiveBack();

 private:
  struct Level {
    Level(const Folder& folder, std::size_t bufferSize) : entries(folder, bufferSize) {}
    FolderEntries entries;
    SystemStatus lost;  // what hides the rest of it
    std::size_t shownLength = 0;
    std::basic_string<SystemName::Letter> name;
  };

  void DetachUpTo(std::size_t level);

  OpenFolders folders_;
  std::deque<Level> levels_;
  std::size_t detached_ = 0;  // so many upper levels have their entries in memory
  SystemStatus failure_;
  Text path_;
};

}  // namespace kiv::platform
