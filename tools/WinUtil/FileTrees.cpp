#include "kivtools/WinUtil/FileTrees.h"

#include "core/Trim.h"
#include "platform/FileCopy.h"
#include "platform/FolderCreation.h"
#include "platform/FolderWalk.h"
#include "tools/WinUtil/ExtensionSet.h"
#include "tools/WinUtil/FittedPath.h"

namespace kiv {
namespace {

using platform::EntryInfo;
using platform::EntryKind;
using platform::Folder;
using platform::FolderEntry;
using platform::FolderWalk;
using platform::Links;
using platform::OpenFolders;

constexpr std::int32_t kWidthInSubFolders = 350;

/// One copy of a tree: the source is walked, the destination follows.
class TreeCopy {
 public:
  TreeCopy(ExtensionSet extensions, host::Label& label, TextView skip)
      : extensions_(std::move(extensions)), label_(label), skip_(platform::LowerPath(Trim(skip))) {}

  void Run(TextView source, TextView destination, std::int32_t maxWidth) {
    if (source.empty() || destination.empty()) {
      return;
    }
    maxWidth_ = maxWidth;
    Begin(destination);
    FolderWalk walk(platform::PathFromText(source), Text(source) + platform::kPathSeparator);
    skipped_ = walk.Depth() > 0 && Skips(walk.Path());
    for (FolderEntry entry; walk.Depth() > 0;) {
      if (!walk.Next(entry)) {
        walk.Leave();
        destination_.Leave();
        skipped_ = walk.Depth() > 0 && Skips(walk.Path());
      } else if (entry.kind == EntryKind::Folder) {
        Enter(walk, entry);
      } else if (extensions_.Takes(entry.letters) && !skipped_) {
        Copy(walk, entry);
      }
    }
  }

 private:
  /// What cannot be made shows in that nothing can be copied to it.
  void Begin(TextView destination) {
    ServeApplication();
    const auto path = platform::PathFromText(destination);
    static_cast<void>(platform::MakeFolders(path));
    EntryInfo info;
    if (!destination_.Enter(path).Failed() && !destination_.Innermost().Query(info).Failed()) {
      destinationRoot_ = info.identity;
    }
  }

  void Enter(FolderWalk& walk, const FolderEntry& entry) {
    EntryInfo info;
    const bool known = !Query(walk.Innermost(), entry.name, Links::AsThemselves, info).Failed();
    if (known && info.identity == destinationRoot_) {
      return;
    }
    ServeApplication();
    // Its owner has to be able to write into the copy.
    const std::uint32_t permissions = known ? (info.attributes & 0777U) | 0700U : 0777U;
    static_cast<void>(MakeFolder(destination_.Innermost(), entry.name, permissions));
    static_cast<void>(destination_.Enter(entry.name));
    if (walk.Enter(entry)) {
      skipped_ = Skips(walk.Path());
    } else {
      destination_.Leave();
    }
  }

  void Copy(const FolderWalk& walk, const FolderEntry& entry) {
    shown_ = walk.Path();
    AppendName(entry, shown_);
    ShowFitted(label_, shown_, walk.Depth() == 1 ? maxWidth_ : kWidthInSubFolders);
    label_.Repaint();
    static_cast<void>(CopyEntry(walk.Innermost(), entry.name, entry.kind, destination_.Innermost(), entry.name));
  }

  [[nodiscard]] bool Skips(TextView folder) const {
    return !skip_.empty() && platform::LowerPath(folder).find(skip_) != Text::npos;
  }

  static void ServeApplication() {
    host::Application& application = host::Current().GetApplication();
    if (application.OnMainThread()) {
      application.ProcessMessages();
    }
  }

  ExtensionSet extensions_;
  host::Label& label_;
  Text skip_;
  std::int32_t maxWidth_ = 0;
  OpenFolders destination_;
  platform::FileIdentity destinationRoot_;
  bool skipped_ = false;
  Text shown_;
};

std::filesystem::path WithoutLastSeparators(const std::filesystem::path& folder) {
  std::filesystem::path path = folder;
  while (path.has_relative_path() && !path.has_filename()) {
    path = path.parent_path();
  }
  return path;
}

/// Asks the system which folder it is, so that no spelling of a root passes for something else.
bool IsRoot(const std::filesystem::path& path) {
  std::error_code unknown;
  const std::filesystem::path root = std::filesystem::absolute(path, unknown).root_path();
  EntryInfo folder;
  EntryInfo top;
  const bool known = !unknown && !Query(Folder::Working(), path, Links::Followed, folder).Failed() &&
                     !Query(Folder::Working(), root, Links::Followed, top).Failed();
  return !path.has_relative_path() || !known || folder.identity == top.identity;
}

void DeleteContent(const std::filesystem::path& path) {
  for (FolderWalk walk(path, {}); walk.Depth() > 0;) {
    FolderEntry entry;
    if (!walk.Next(entry)) {
      const auto name = std::filesystem::path(walk.Name().Get());
      walk.Leave();
      if (walk.Depth() > 0) {
        static_cast<void>(RemoveFolder(walk.Innermost(), name));
      }
    } else if (entry.kind != EntryKind::Folder) {
      static_cast<void>(ForceRemoveFile(walk.Innermost(), entry.name));
    } else if (!walk.Enter(entry)) {
      static_cast<void>(RemoveFolder(walk.Innermost(), entry.name));  // unreadable, and yet perhaps empty
    }
  }
}

}  // namespace

void RecursiveCopyWithExt(TextView source, TextView destination, const StringList& extensions, host::Label& label,
                          std::int32_t maxWidth) {
  TreeCopy({extensions, ExtensionSet::Case::AsGiven, ExtensionSet::Star::EveryFile}, label, {})
      .Run(source, destination, maxWidth);
}

void RecursiveCopyWithExtSkipFolders(TextView source, TextView destination, const StringList& extensions,
                                     host::Label& label, TextView skip, std::int32_t maxWidth) {
  TreeCopy({extensions, ExtensionSet::Case::AsGiven, ExtensionSet::Star::NoMeaning}, label, skip)
      .Run(source, destination, maxWidth);
}

void RecursiveDelete(TextView folder) {
  const std::filesystem::path path = WithoutLastSeparators(platform::PathFromText(folder));
  EntryInfo info;
  const platform::SystemStatus known = Query(Folder::Working(), path, Links::AsThemselves, info);
  if (known.Failed() || IsRoot(path)) {
    return;
  }
  if (info.kind == EntryKind::Link) {
    EntryInfo target;
    if (!Query(Folder::Working(), path, Links::Followed, target).Failed() && target.kind == EntryKind::Folder) {
      static_cast<void>(RemoveFile(Folder::Working(), path));
    }
    return;
  }
  DeleteContent(path);
  static_cast<void>(RemoveFolder(Folder::Working(), path));
}

}  // namespace kiv
