#include "kivtools/WinUtil/FileTrees.h"

#include "core/Trim.h"
#include "platform/FileCopy.h"
#include "platform/FolderCreation.h"
#include "platform/FolderWalk.h"
#include "tools/WinUtil/ExtensionSet.h"
#include "tools/WinUtil/FittedPath.h"
#include "tools/WinUtil/TreeReport.h"

namespace kiv {
namespace {

using platform::EntryInfo;
using platform::EntryKind;
using platform::Folder;
using platform::FolderEntry;
using platform::FolderWalk;
using platform::Links;
using platform::OpenFolders;
using platform::SystemStatus;

constexpr std::int32_t kWidthInSubFolders = 350;

/// One copy of a tree: the source is walked, the destination follows.
class TreeCopy {
 public:
  TreeCopy(TextView operation, ExtensionSet extensions, host::Label& label, TextView skip)
      : report_(operation), extensions_(std::move(extensions)), label_(label), skip_(platform::LowerPath(Trim(skip))) {}

  void Run(TextView source, TextView destination, std::int32_t maxWidth) {
    if (source.empty() || destination.empty()) {
      return;
    }
    maxWidth_ = maxWidth;
    Begin(destination);
    FolderWalk walk(platform::PathFromText(source), Text(source) + platform::kPathSeparator);
    sourceLength_ = source.size();
    report_.Failure(source, walk.Failure());
    skipped_ = walk.Depth() > 0 && Skips(walk.Path());
    for (FolderEntry entry; walk.Depth() > 0;) {
      if (!walk.Next(entry)) {
        report_.Failure(walk.Path(), walk.Failure());
        walk.Leave();
        Leave(walk);
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
    destinationName_ = destination;
    const SystemStatus made = platform::MakeFolders(path);
    SystemStatus entered = destination_.Enter(path);
    EntryInfo info;
    if (!entered.Failed()) {
      entered = destination_.Innermost().Query(info);
      destinationRoot_ = info.identity;
    }
    if (entered.Failed()) {
      static_cast<void>(destination_.Leave());
      static_cast<void>(destination_.Enter(std::filesystem::path()));  // which nothing is
    }
    TellFolder(destination, made, entered);
  }

  void Enter(FolderWalk& walk, const FolderEntry& entry) {
    EntryInfo info;
    if (const SystemStatus asked = Query(walk.Innermost(), entry.name, Links::AsThemselves, info); asked.Failed()) {
      report_.Failure(PathOf(walk, entry), asked);
      return;  // it might be the destination, in which there would be no end
    }
    if (info.identity == destinationRoot_) {
      return;
    }
    ServeApplication();
    // Its owner has to be able to write into the copy.
    const std::uint32_t permissions = (info.attributes & 0777U) | 0700U;
    const bool hasPlace = destination_.Innermost().IsOpen();
    const SystemStatus made = MakeFolder(destination_.Innermost(), entry.name, permissions);
    const SystemStatus entered = EnterDestination(walk, entry.name);
    hints_.allowed.reset();
    if (hasPlace && report_.IsWanted()) {
      TellFolder(DestinationOf(PathOf(walk, entry)), made, entered);
    }
    bool isIn = walk.Enter(entry);
    while (!isIn && walk.Failure().IsOutOfHandles() && destination_.GiveBack()) {
      isIn = walk.Enter(entry);
    }
    if (isIn) {
      skipped_ = Skips(walk.Path());
    } else {
      report_.Failure(PathOf(walk, entry), walk.Failure());
      static_cast<void>(destination_.Leave());
    }
  }

  SystemStatus EnterDestination(FolderWalk& walk, platform::SystemName name) {
    for (;;) {
      const SystemStatus entered = destination_.Enter(name);
      if (!entered.IsOutOfHandles()) {
        return entered;
      }
      static_cast<void>(destination_.Leave());
      if (!GiveBack(walk)) {
        return destination_.Enter(name);  // one that is not open
      }
    }
  }

  void Leave(const FolderWalk& walk) {
    const SystemStatus left = destination_.Leave();
    hints_.allowed.reset();
    if (walk.Depth() > 0) {
      report_.Failure(DestinationOf(walk.Path()), left);
    }
  }

  /// Where the process may have no more files open, both walks keep fewer folders open.
  bool GiveBack(FolderWalk& walk) {
    const bool source = walk.GiveBack();
    return destination_.GiveBack() || source;
  }

  void Copy(FolderWalk& walk, const FolderEntry& entry) {
    shown_ = walk.Path();
    AppendName(entry, shown_);
    ShowFitted(label_, shown_, walk.Depth() == 1 ? maxWidth_ : kWidthInSubFolders);
    label_.Repaint();
    SystemStatus copied;
    do {
      copied = CopyEntry(walk.Innermost(), entry.name, entry.kind, destination_.Innermost(), entry.name, hints_);
    } while (copied.IsOutOfHandles() && GiveBack(walk));
    if (!copied.Failed()) {
      report_.File(shown_, report_.SizeOf(walk.Innermost(), entry));
    } else if (destination_.Innermost().IsOpen() && report_.IsWanted()) {
      report_.Failure(shown_, copied, DestinationOf(shown_));
    }
  }

  /// What comes of making a folder of the destination and going into it; one that was there is as good.
  void TellFolder(TextView path, SystemStatus made, SystemStatus entered) const {
    if (!entered.Failed()) {
      report_.Folder(path);
    } else {
      report_.Failure(path, made.Failed() && !made.IsExisting() ? made : entered);
    }
  }

  /// Where a path of the source goes.
  [[nodiscard]] Text DestinationOf(TextView path) const { return destinationName_ + Text(path.substr(sourceLength_)); }

  [[nodiscard]] bool Skips(TextView folder) const {
    return !skip_.empty() && platform::LowerPath(folder).find(skip_) != Text::npos;
  }

  static void ServeApplication() {
    host::Application& application = host::Current().GetApplication();
    if (application.OnMainThread()) {
      application.ProcessMessages();
    }
  }

  TreeReport report_;
  ExtensionSet extensions_;
  host::Label& label_;
  Text skip_;
  std::int32_t maxWidth_ = 0;
  std::size_t sourceLength_ = 0;
  Text destinationName_;
  OpenFolders destination_;
  platform::FileIdentity destinationRoot_;
  platform::CopyHints hints_;
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
SystemStatus AskWhetherRoot(const std::filesystem::path& path, bool& isRoot) {
  std::error_code unknown;
  const std::filesystem::path root = std::filesystem::absolute(path, unknown).root_path();
  EntryInfo folder;
  EntryInfo top;
  SystemStatus asked = Query(Folder::Working(), path, Links::Followed, folder);
  if (!asked.Failed()) {
    asked = Query(Folder::Working(), root, Links::Followed, top);
  }
  isRoot = !path.has_relative_path() || folder.identity == top.identity;
  return asked;
}

class TreeDeletion {
 public:
  explicit TreeDeletion(TextView folder) : root_(folder) {
    while (root_.size() > 1 && (root_.ends_with(platform::kPathSeparator) || root_.ends_with('/'))) {
      root_.remove_suffix(1);
    }
  }

  void Run() {
    const std::filesystem::path path = WithoutLastSeparators(platform::PathFromText(root_));
    EntryInfo info;
    bool isRoot = false;
    SystemStatus known = Query(Folder::Working(), path, Links::AsThemselves, info);
    if (!known.Failed()) {
      known = AskWhetherRoot(path, isRoot);
    }
    if (known.Failed() || isRoot) {
      report_.Failure(root_, known);
    } else if (info.kind == EntryKind::Link) {
      DeleteLink(path);
    } else {
      DeleteContent(path);
      TellFolder(0, root_, RemoveFolder(Folder::Working(), path), unread_);
    }
  }

 private:
  void DeleteLink(const std::filesystem::path& path) {
    EntryInfo target;
    const SystemStatus asked = Query(Folder::Working(), path, Links::Followed, target);
    if (!asked.Failed() && target.kind != EntryKind::Folder) {
      report_.Failure(root_, Folder().Open(Folder::Working(), path));
    } else {
      TellFile(0, root_, 0, asked.Failed() ? asked : RemoveFile(Folder::Working(), path));
    }
  }

  void DeleteContent(const std::filesystem::path& path) {
    FolderWalk walk(path, Text(root_) + platform::kPathSeparator);
    unread_ = walk.Failure();
    while (walk.Depth() > 0) {
      FolderEntry entry;
      if (!walk.Next(entry)) {
        LeaveFolder(walk);
      } else if (entry.kind != EntryKind::Folder) {
        const std::uint64_t size = report_.SizeOf(walk.Innermost(), entry);
        const SystemStatus removed = ForceRemoveFile(walk.Innermost(), entry.name);
        if (report_.IsWanted()) {
          TellFile(walk.Depth(), PathOf(walk, entry), size, removed);
        }
      } else if (!walk.Enter(entry)) {
        const SystemStatus removed = RemoveFolder(walk.Innermost(), entry.name);  // perhaps it is empty
        TellFolder(walk.Depth(), PathOf(walk, entry), removed, walk.Failure());
      }
    }
  }

  void LeaveFolder(FolderWalk& walk) {
    const SystemStatus unread = walk.Failure();
    const auto name = std::filesystem::path(walk.Name().Get());
    const Text path = report_.IsWanted() ? walk.Path().substr(0, walk.Path().size() - 1) : Text();
    walk.Leave();
    if (walk.Depth() == 0) {
      unread_ = unread;
    } else {
      TellFolder(walk.Depth(), path, RemoveFolder(walk.Innermost(), name), unread);
    }
  }

  void TellFile(std::size_t depth, TextView path, std::uint64_t size, SystemStatus removed) {
    if (removed.Failed()) {
      staying_ = depth;
      report_.Failure(path, removed);
    } else {
      report_.File(path, size);
    }
  }

  /// A folder in the one of that depth. What could not be read is a better reason than what follows from it.
  void TellFolder(std::size_t depth, TextView path, SystemStatus removed, SystemStatus unread) {
    const bool isKnown = staying_ > depth;  // it stays for what is in it, which has been told of
    staying_ = removed.Failed() ? depth : std::min(staying_, depth);
    if (!removed.Failed()) {
      report_.Folder(path);
    } else if (!isKnown) {
      report_.Failure(path, unread.Failed() ? unread : removed);
    }
  }

  TextView root_;
  TreeReport report_{"RecursiveDelete"};
  SystemStatus unread_;
  std::size_t staying_ = 0;  // the depth of the innermost folder with something in it that stays
};

}  // namespace

void RecursiveCopyWithExt(TextView source, TextView destination, const StringList& extensions, host::Label& label,
                          std::int32_t maxWidth) {
  TreeCopy("RecursiveCopyWithExt", {extensions, ExtensionSet::Case::AsGiven, ExtensionSet::Star::EveryFile}, label, {})
      .Run(source, destination, maxWidth);
}

void RecursiveCopyWithExtSkipFolders(TextView source, TextView destination, const StringList& extensions,
                                     host::Label& label, TextView skip, std::int32_t maxWidth) {
  TreeCopy("RecursiveCopyWithExtSkipFolders", {extensions, ExtensionSet::Case::AsGiven, ExtensionSet::Star::NoMeaning},
           label, skip)
      .Run(source, destination, maxWidth);
}

void RecursiveDelete(TextView folder) {
  TreeDeletion(folder).Run();
}

}  // namespace kiv
