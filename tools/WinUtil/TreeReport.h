#pragma once

#include "kivtools/WinUtil/TreeWatcher.h"
#include "platform/FolderWalk.h"

namespace kiv {

/// What an operation on file trees tells the watcher of its thread, if there is one.
class TreeReport {
 public:
  explicit TreeReport(TextView operation) noexcept;

  /// Whether anybody wants to know: what has to be asked for first is not asked for nobody.
  [[nodiscard]] bool IsWanted() const noexcept { return watcher_ != nullptr; }

  void File(TextView path, std::uint64_t size) const;
  void Folder(TextView path) const;
  /// Tells nothing for a status that is no failure. A separator at the end of the path is left out. What went from one
  /// path to another is told with both.
  void Failure(TextView path, platform::SystemStatus status, TextView whereTo = {}) const;

  /// The size that a file is told with; 0 where nobody wants to know.
  [[nodiscard]] std::uint64_t SizeOf(const platform::Folder& at, const platform::FolderEntry& entry) const;

 private:
  TextView operation_;
  TreeWatcher* watcher_;
};

/// The path of an entry of the folder that a walk is in.
Text PathOf(const platform::FolderWalk& walk, const platform::FolderEntry& entry);

}  // namespace kiv
