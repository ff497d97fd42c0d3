#include "platform/FolderWalk.h"

#include <utility>

#include "platform/Paths.h"

namespace kiv::platform {

SystemStatus OpenFolders::Enter(SystemName name) {
  if (levels_.size() >= Folder::MostOpen()) {
    Release(levels_[levels_.size() - Folder::MostOpen()]);
  }
  Folder folder;
  const SystemStatus opened = levels_.empty() ? folder.Open(Folder::Working(), name, Links::Followed)
                                              : folder.Open(levels_.back().folder, name, Links::AsThemselves);
  levels_.emplace_back().folder = std::move(folder);
  return opened;
}

void OpenFolders::Leave() {
  const Level left = std::move(levels_.back());
  levels_.pop_back();
  if (!levels_.empty() && levels_.back().released) {
    Reopen(levels_.back(), left.folder);
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

void OpenFolders::Reopen(Level& level, const Folder& below) noexcept {
  static const std::filesystem::path above = "..";
  Folder folder;
  EntryInfo info;
  const bool isBack = !folder.Open(below, above, Links::AsThemselves).Failed() && !folder.Query(info).Failed() &&
                      info.identity == level.identity;
  level.released = false;
  if (isBack) {
    level.folder = std::move(folder);
  }
}

namespace {

/// The upper levels of a tree are the wide ones, the lower ones of a deep tree are many.
std::size_t BufferSize(std::size_t depth) noexcept {
  constexpr std::size_t kWideLevels = 32;
  return depth < kWideLevels ? 32'768 : 4'096;
}

}  // namespace

FolderWalk::FolderWalk(const std::filesystem::path& path, TextView shown) : path_(shown) {
  if (!folders_.Enter(path).Failed()) {
    levels_.emplace_back(folders_.Innermost(), BufferSize(0)).shownLength = path_.size();
  }
}

bool FolderWalk::Next(FolderEntry& entry) {
  bool found = false;
  return folders_.Innermost().IsOpen() && !levels_.back().entries.Next(entry, found).Failed() && found;
}

bool FolderWalk::Enter(const FolderEntry& entry) {
  if (levels_.size() >= Folder::MostOpen()) {
    // What could not be read of it is passed over.
    static_cast<void>(levels_[levels_.size() - Folder::MostOpen()].entries.Detach());
  }
  if (folders_.Enter(entry.name).Failed()) {
    folders_.Leave();
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
  folders_.Leave();
  path_.resize(levels_.empty() ? 0 : levels_.back().shownLength);
}

}  // namespace kiv::platform
