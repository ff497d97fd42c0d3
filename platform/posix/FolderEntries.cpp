#include "platform/FolderEntries.h"

#include <dirent.h>
#include <unistd.h>

#include <string_view>

#include "platform/posix/Call.h"

namespace kiv::platform {
namespace {

EntryKind KindOf(unsigned char type) noexcept {
  switch (type) {
    case DT_REG:
      return EntryKind::File;
    case DT_DIR:
      return EntryKind::Folder;
    case DT_LNK:
      return EntryKind::Link;
    default:
      return EntryKind::Other;
  }
}

}  // namespace

FolderEntries::FolderEntries(const Folder& folder, std::size_t bufferSize)
    : folder_(folder), capacity_(bufferSize), buffer_(new std::byte[bufferSize]) {}

SystemStatus FolderEntries::Fill(bool& found) noexcept {
  const int descriptor = static_cast<int>(folder_.Handle().Get());
  if (!started_) {
    started_ = true;
    lseek(descriptor, 0, SEEK_SET);
  }
  ssize_t count = 0;
  const SystemStatus listed =
      MakeCall(SystemCall::List, count, [&] { return getdents64(descriptor, buffer_.get(), capacity_); });
  found = !listed.Failed() && count > 0;
  filled_ = found ? static_cast<std::size_t>(count) : 0;
  at_ = 0;
  return listed;
}

SystemStatus FolderEntries::Next(FolderEntry& entry, bool& found) {
  for (;;) {
    if (at_ == filled_) {
      const SystemStatus listed = Fill(found);
      if (!found) {
        return listed;
      }
    }
    const auto* const record = reinterpret_cast<const dirent64*>(buffer_.get() + at_);
    at_ += record->d_reclen;
    const std::string_view name = record->d_name;
    if (name == "." || name == "..") {
      continue;
    }
    entry.name = record->d_name;
    entry.kind = KindOf(record->d_type);
    found = true;
    if (record->d_type == DT_UNKNOWN) {  // a file system whose lists have no such field
      EntryInfo info;
      const SystemStatus asked = Query(folder_, entry.name, Links::AsThemselves, info);
      if (asked.IsMissing()) {
        continue;
      }
      entry.kind = info.kind;
      found = !asked.Failed();
      return asked;
    }
    return {};
  }
}

}  // namespace kiv::platform
