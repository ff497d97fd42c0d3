#include "platform/FolderWalk.h"

#include <algorithm>
#include <utility>

#include "platform/Paths.h"

namespace kiv::platform {

SystemStatus OpenFolders::Enter(SystemName name) {
  ReleaseUpTo(FirstKept());
  Folder folder;
  const SystemStatus opened = levels_.empty() ? folder.Open(Folder::Working(), name, Links::Followed)
                                              : folder.Open(levels_.back().folder, name, Links::AsThemselves);
  levels_.emplace_back().folder = std::move(folder);
  return opened;
}

SystemStatus OpenFolders::Leave() {
  const Level left = std::move(levels_.back());
  levels_.pop_back();
  if (levels_.empty()) {
    return {};
  }
  firstOpen_ = std::min(firstOpen_, levels_.size() - 1);
  return levels_.back().released ? Reopen(levels_.back(), left.folder) : SystemStatus();
}

std::size_t OpenFolders::FirstKept() const noexcept {
  return levels_.size() < mostOpen_ ? 0 : levels_.size() - mostOpen_ + 1;
}

bool OpenFolders::GiveBack() noexcept {
  if (firstOpen_ + 1 >= levels_.size()) {
    return false;
  }
  ReleaseUpTo(firstOpen_ + 1);
  mostOpen_ = std::max<std::size_t>(levels_.size() - firstOpen_, 2);  // a folder is opened by its name in another
  return true;
}

void OpenFolders::ReleaseUpTo(std::size_t level) noexcept {
  for (; firstOpen_ < level; ++firstOpen_) {
    Release(levels_[firstOpen_]);
  }
}

/// Closed only if it will be known again; one more open folder does less harm than a lost one.
void OpenFolders::Release(Level& level) noexcept {
  EntryInfo info;
  if (level.folder.Query(info).Failed()) {
    return;
  }
  level.identity = info.identity;
  level.released = true;
  level.folder = Folder();
}

SystemStatus OpenFolders::Reopen(Level& level, const Folder& below) noexcept {
  static const std::filesystem::path above = "..";
  Folder folder;
  EntryInfo info;
  level.released = false;
  SystemStatus found = folder.Open(below, above, Links::AsThemselves);
  if (!found.Failed()) {
    found = folder.Query(info);
  }
  if (found.Failed()) {
    return found;
  }
  if (info.identity != level.identity) {
    return platform::Query(below, std::filesystem::path(), Links::AsThemselves, info);  // which nothing is
  }
  level.folder = std::move(folder);
  return {};
}

namespace {

/// The upper levels of a tree are the wide ones, the lower ones of a deep tree are many.
std::size_t BufferSize(std::size_t depth) noexcept {
  constexpr std::size_t kWideLevels = 32;
  return depth < kWideLevels ? 32'768 : 4'096;
}

}  // namespace

FolderWalk::FolderWalk(const std::filesystem::path& path, TextView shown) : path_(shown) {
  failure_ = folders_.Enter(path);
  if (!failure_.Failed()) {
    levels_.emplace_back(folders_.Innermost(), BufferSize(0)).shownLength = path_.size();
  }
}

bool FolderWalk::Next(FolderEntry& entry) {
  bool found = false;
  failure_ = levels_.back().lost;
  if (folders_.Innermost().IsOpen()) {
    const SystemStatus listed = levels_.back().entries.Next(entry, found);
    failure_ = found ? SystemStatus() : listed.Failed() ? listed : failure_;
  }
  return found;
}

bool FolderWalk::Enter(const FolderEntry& entry) {
  do {
    DetachUpTo(folders_.FirstKept());
    failure_ = folders_.Enter(entry.name);
    if (failure_.Failed()) {
      static_cast<void>(folders_.Leave());
    }
  } while (failure_.IsOutOfHandles() && GiveBack());
  if (failure_.Failed()) {
    return false;
  }
  AppendName(entry, path_);
  path_.push_back(kPathSeparator);
  Level& level = levels_.emplace_back(folders_.Innermost(), BufferSize(levels_.size()));
  level.shownLength = path_.size();
  level.name = entry.letters;
  return true;
}

void FolderWalk::Leave() {
  levels_.pop_back();
  detached_ = std::min(detached_, levels_.size());
  if (const SystemStatus left = folders_.Leave(); left.Failed()) {
    levels_.back().lost = left;
  }
  path_.resize(levels_.empty() ? 0 : levels_.back().shownLength);
}

bool FolderWalk::GiveBack() {
  DetachUpTo(folders_.FirstOpen() + 1);
  return folders_.GiveBack();
}

/// So that these folders may be closed. The innermost one is not among them: its present entry is in use.
void FolderWalk::DetachUpTo(std::size_t level) {
  for (; detached_ < std::min(level, levels_.size() - 1); ++detached_) {
    if (const SystemStatus read = levels_[detached_].entries.Detach(); read.Failed()) {
      levels_[detached_].lost = read;
    }
  }
}

}  // namespace kiv::platform
