#include "kivtools/WinUtil/FileTrees.h"
#include "tools/WinUtil/TreeReport.h"

namespace kiv {
namespace {

using platform::EntryInfo;
using platform::EntryKind;
using platform::Folder;
using platform::FolderEntry;
using platform::FolderWalk;
using platform::Links;
using platform::SystemStatus;

class TreeMeasurement {
 public:
  TreeSize Measure(TextView root) {
    const std::filesystem::path path = platform::PathFromText(root);
    EntryInfo info;
    Query(Folder::Working(), path, Links::AsThemselves, info).OrThrow(kOperation, path);
    if (info.kind == EntryKind::Folder) {
      MeasureContent(path, root);
    } else {
      CountFile(root, info);
    }
    return size_;
  }

 private:
  static constexpr TextView kOperation = "MeasureTree";

  void MeasureContent(const std::filesystem::path& path, TextView root) {
    FolderWalk walk(path, Text(root) + platform::kPathSeparator);
    walk.Failure().OrThrow(kOperation, path);
    CountFolder(root);
    for (FolderEntry entry; walk.Depth() > 0;) {
      if (!walk.Next(entry)) {
        report_.Failure(walk.Path(), walk.Failure());
        walk.Leave();
      } else if (entry.kind == EntryKind::Folder) {
        Enter(walk, entry);
      } else {
        Ask(walk, entry);
      }
    }
  }

  void Enter(FolderWalk& walk, const FolderEntry& entry) {
    const Text path = report_.IsWanted() ? PathOf(walk, entry) : Text();
    CountFolder(path);
    if (!walk.Enter(entry)) {
      report_.Failure(path, walk.Failure());
    }
  }

  void Ask(const FolderWalk& walk, const FolderEntry& entry) {
    EntryInfo info;
    info.kind = entry.kind;
    const bool hasBytes = entry.kind == EntryKind::File;
    const SystemStatus asked =
        hasBytes ? Query(walk.Innermost(), entry.name, Links::AsThemselves, info) : SystemStatus();
    if (asked.IsMissing()) {  // it went meanwhile
      return;
    }
    const Text path = report_.IsWanted() ? PathOf(walk, entry) : Text();
    CountFile(path, info);
    report_.Failure(path, asked);
  }

  void CountFile(TextView path, const EntryInfo& info) {
    const std::uint64_t bytes = info.kind == EntryKind::File ? info.size : 0;
    ++size_.files;
    size_.bytes += bytes;
    report_.File(path, bytes);
  }

  void CountFolder(TextView path) {
    ++size_.folders;
    report_.Folder(path);
  }

  TreeSize size_;
  TreeReport report_{kOperation};
};

}  // namespace

TreeSize MeasureTree(TextView root) {
  return TreeMeasurement().Measure(root);
}

}  // namespace kiv
