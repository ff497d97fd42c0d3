#include "platform/FolderEntries.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <vector>

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

void AppendName(const FolderEntry& entry, Text& path) {
  path.append(entry.letters);
}

SystemStatus FolderEntries::Detach() {
  std::vector<std::byte> rest(buffer_.get() + at_, buffer_.get() + filled_);
  SystemStatus listed;
  for (bool more = !complete_; more;) {
    listed = Fill(more);
    rest.insert(rest.end(), buffer_.get(), buffer_.get() + filled_);
  }
  complete_ = true;
  buffer_ = std::make_unique_for_overwrite<std::byte[]>(rest.size());
  std::ranges::copy(rest, buffer_.get());
  capacity_ = filled_ = rest.size();
  at_ = 0;
  return listed;
}

SystemStatus FolderEntries::Fill(bool& found) noexcept {
  const int descriptor = static_cast<int>(folder_.Handle().Get());
  if (complete_) {
    found = false;
    return {};
  }
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
    entry.letters = name;
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
