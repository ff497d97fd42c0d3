#include "platform/FolderCreation.h"

#include <vector>

namespace kiv::platform {
namespace {

SystemStatus MakeOne(const std::filesystem::path& path) {
  const SystemStatus made = MakeFolder(Folder::Working(), path);
  if (!made.Failed()) {
    return made;
  }
  EntryInfo info;
  const SystemStatus there = Query(Folder::Working(), path, Links::Followed, info);
  return !there.Failed() && info.kind == EntryKind::Folder ? SystemStatus() : made;
}

}  // namespace

SystemStatus MakeFolders(const std::filesystem::path& path) {
  // From the lowest folder up to the first that can be made or is there, then down again: above it another user's
  // folders may be that do not let themselves be looked at.
  std::vector<std::filesystem::path> missing;
  SystemStatus status;
  std::filesystem::path folder = path;
  while (!folder.empty()) {
    status = MakeOne(folder);
    const std::filesystem::path above = folder.parent_path();
    if (!status.IsMissing() || above == folder) {
      break;
    }
    missing.push_back(folder);
    folder = above;
  }
  // The last one may have been missing for want of a name above it, which is this process's own folder.
  while (!status.Failed() && !missing.empty()) {
    status = MakeOne(missing.back());
    missing.pop_back();
  }
  return status;
}

}  // namespace kiv::platform
