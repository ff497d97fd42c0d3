#include "kivtools/WinUtil/FileLists.h"

#include <limits>

#include "platform/FolderWalk.h"
#include "tools/WinUtil/ExtensionSet.h"
#include "tools/WinUtil/TreeReport.h"

namespace kiv {
namespace {

using platform::EntryKind;
using platform::FolderEntry;
using platform::FolderWalk;

StringList FilesBelow(TextView operation, TextView root, const StringList& extensions, std::size_t maxDepth) {
  StringList files;
  if (root.empty()) {
    return files;
  }
  Text shown(root);
  if (shown.back() != platform::kPathSeparator) {
    shown.push_back(platform::kPathSeparator);
  }
  const ExtensionSet wanted(extensions, ExtensionSet::Case::Any, ExtensionSet::Star::EveryFile);
  const TreeReport report(operation);
  FolderWalk walk(platform::PathFromText(root), shown);
  report.Failure(root, walk.Failure());
  for (FolderEntry entry; walk.Depth() > 0;) {
    if (!walk.Next(entry)) {
      report.Failure(walk.Path(), walk.Failure());
      walk.Leave();
    } else if (entry.kind == EntryKind::Folder) {
      if (walk.Depth() <= maxDepth && !walk.Enter(entry)) {
        report.Failure(PathOf(walk, entry), walk.Failure());
      }
    } else if (wanted.Takes(entry.letters)) {
      Text& path = files.emplace_back();
      path.reserve(walk.Path().size() + entry.letters.size());
      path.append(walk.Path());
      AppendName(entry, path);
    }
  }
  return files;
}

}  // namespace

StringList InitFileList(TextView root, const StringList& extensions) {
  return FilesBelow("InitFileList", root, extensions, std::numeric_limits<std::size_t>::max());
}

StringList InitFileListMaxDepth(TextView root, const StringList& extensions, std::int32_t maxDepth) {
  return maxDepth < 0 ? StringList()
                      : FilesBelow("InitFileListMaxDepth", root, extensions, static_cast<std::size_t>(maxDepth));
}

}  // namespace kiv
