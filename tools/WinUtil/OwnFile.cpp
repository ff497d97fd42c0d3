#include "tools/WinUtil/OwnFile.h"

#include <algorithm>
#include <chrono>

#include "platform/Paths.h"
#include "platform/Timer.h"

namespace kiv {
namespace {

using platform::EntryInfo;
using platform::EntryKind;
using platform::Folder;
using platform::Links;
using platform::SystemStatus;

/// Asks a second time where the first fails: what hangs on the answer is somebody's file.
SystemStatus Ask(const Text& file, Links links, EntryInfo& info) {
  const auto path = platform::PathFromText(file);
  const SystemStatus first = Query(Folder::Working(), path, links, info);
  return first.Failed() && !first.IsMissing() ? Query(Folder::Working(), path, links, info) : first;
}

}  // namespace

bool FileExists(const Text& path, Links links) {
  EntryInfo info;
  return !Ask(path, links, info).Failed() && info.kind != EntryKind::Folder;
}

bool WouldTakeAway(const Text& path, const Text& other) {
  EntryInfo taken;
  const SystemStatus asked = Ask(path, Links::AsThemselves, taken);
  if (asked.Failed()) {
    return !asked.IsMissing();
  }
  const auto isTaken = [&](Links links) {
    EntryInfo info;
    return Ask(other, links, info).Failed() || info.identity == taken.identity;
  };
  return isTaken(Links::Followed) || isTaken(Links::AsThemselves);
}

bool OwnFile::IsSpared() const {
  return spared_ != nullptr &&
         std::ranges::any_of(*spared_, [this](const Text& file) { return WouldTakeAway(path_, file); });
}

OwnFile::~OwnFile() {
  constexpr int kAttempts = 3;
  constexpr std::chrono::milliseconds kPause(50);  // who looks a new file over for viruses soon lets it go
  try {
    if (path_.empty() || IsSpared()) {
      return;
    }
    const auto path = platform::PathFromText(path_);
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
      const SystemStatus removed = ForceRemoveFile(Folder::Working(), path);
      if (!removed.Failed() || removed.IsMissing() || attempt == kAttempts) {
        return;
      }
      platform::timer_service.Current().Sleep(kPause);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a destructor has nobody to tell it to
  }
}

}  // namespace kiv
