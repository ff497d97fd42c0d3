#include "platform/Diskettes.h"

#include <algorithm>
#include <cerrno>
#include <mutex>

#include "platform/Files.h"

namespace kiv::platform {
namespace {

/// The folder that stands for drive A:, for whoever asks on whatever thread.
class DisketteFolder {
 public:
  [[nodiscard]] Text Get() {
    const std::scoped_lock lock(mutex_);
    return path_;
  }
  void Set(TextView path) {
    Text copy(path);
    const std::scoped_lock lock(mutex_);
    path_.swap(copy);
  }

 private:
  std::mutex mutex_;
  Text path_;
};

DisketteFolder& FolderOfDriveA() {
  static DisketteFolder folder;
  return folder;
}

bool IsOnDriveA(TextView path) noexcept {
  return path.size() >= 3 && (path[0] == 'A' || path[0] == 'a') && path[1] == ':' &&
         (path[2] == '\\' || path[2] == '/');
}

}  // namespace

std::int32_t Diskettes::VolumeError() const noexcept {
  constexpr std::int32_t kNotReady = 21;
  constexpr std::int32_t kGeneralFailure = 31;
  try {
    const Text folder = FolderOfDriveA().Get();
    if (folder.empty()) {
      return kNotReady;
    }
    Folder root;
    const SystemStatus opened = root.Open(Folder::Working(), PathFromText(folder));
    if (!opened.Failed()) {
      return 0;
    }
    return opened.IsMissing() ? kNotReady : kGeneralFailure;
  } catch (const std::bad_alloc&) {
    return kNotReady;
  }
}

Text Diskettes::PathOf(TextView path) const {
  const Text folder = FolderOfDriveA().Get();
  if (folder.empty() || !IsOnDriveA(path)) {
    return Text(path);
  }
  Text inFolder = folder + "/" + Text(path.substr(3));
  std::replace(inFolder.begin() + static_cast<std::ptrdiff_t>(folder.size()), inFolder.end(), '\\', '/');
  return inFolder;
}

std::int32_t Diskettes::ShowFormatDialog(TextView operation, Handle /*owner*/, std::uint32_t /*drive*/) const {
  throw SystemError(operation, ENOTSUP);
}

void SetDisketteFolder(TextView /*operation*/, TextView folder) {
  FolderOfDriveA().Set(folder);
}

}  // namespace kiv::platform
