#include "tools/WinUtil/TreeReport.h"

#include <utility>

namespace kiv {
namespace {

constinit thread_local TreeWatcher* current_watcher = nullptr;

}  // namespace

TreeWatcher::TreeWatcher() noexcept : former_(std::exchange(current_watcher, this)) {}

TreeWatcher::~TreeWatcher() {
  current_watcher = former_;
}

void TreeWatcher::OnFile(TextView /*path*/, std::uint64_t /*size*/) {}

void TreeWatcher::OnFolder(TextView /*path*/) {}

void TreeWatcher::OnFailure(TextView /*path*/, const OsError& /*error*/) {}

TreeReport::TreeReport(TextView operation) noexcept : operation_(operation), watcher_(current_watcher) {}

void TreeReport::File(TextView path, std::uint64_t size) const {
  if (watcher_ != nullptr) {
    watcher_->OnFile(path, size);
  }
}

void TreeReport::Folder(TextView path) const {
  if (watcher_ != nullptr) {
    watcher_->OnFolder(path);
  }
}

void TreeReport::Failure(TextView path, platform::SystemStatus status, TextView whereTo) const {
  if (watcher_ == nullptr || !status.Failed()) {
    return;
  }
  if (path.size() > 1 && path.back() == platform::kPathSeparator) {
    path.remove_suffix(1);
  }
  Text shown(path);
  if (!whereTo.empty()) {
    shown.append(" -> ").append(whereTo);
  }
  const Text context = Text(operation_) + ": " + platform::ShownPath(platform::PathFromText(shown).native());
  watcher_->OnFailure(path, platform::SystemError(context, status.Code()));
}

std::uint64_t TreeReport::SizeOf(const platform::Folder& at, const platform::FolderEntry& entry) const {
  platform::EntryInfo info;
  const bool asks = watcher_ != nullptr && entry.kind == platform::EntryKind::File;
  return asks && !Query(at, entry.name, platform::Links::AsThemselves, info).Failed() ? info.size : 0;
}

Text PathOf(const platform::FolderWalk& walk, const platform::FolderEntry& entry) {
  Text path = walk.Path();
  AppendName(entry, path);
  return path;
}

}  // namespace kiv
