#include "platform/FolderEntries.h"

#include <algorithm>
#include <string_view>

#include "kivtools/Windows1250.h"
#include "platform/Paths.h"
#include "platform/win32/Nt.h"

namespace kiv::platform {
namespace {

constexpr std::size_t kLongestEntry = 256;

/// The list has a reparse point's tag where other entries have the size of their extended attributes.
EntryKind KindOf(const FILE_ID_BOTH_DIR_INFO& record) noexcept {
  if ((record.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLinkTag(record.EaSize)) {
    return EntryKind::Link;
  }
  return (record.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

}  // namespace

FolderEntries::FolderEntries(const Folder& folder, std::size_t bufferSize)
    : folder_(folder), capacity_(bufferSize), buffer_(new std::byte[bufferSize]) {
  name_.reserve(kLongestEntry);
}

void AppendName(const FolderEntry& entry, Text& path) {
  const bool inCodePage = std::ranges::all_of(entry.letters, [](wchar_t letter) {
    return windows1250::FromUnicode(static_cast<char16_t>(letter)).has_value();
  });
  path.append(ShownPath(inCodePage || entry.shortName.empty() ? entry.letters : entry.shortName));
}

SystemStatus FolderEntries::Detach() {
  return {};
}

SystemStatus FolderEntries::Fill(bool& found) noexcept {
  const auto question = started_ ? FileIdBothDirectoryInfo : FileIdBothDirectoryRestartInfo;
  const SystemStatus listed = MakeCall(SystemCall::List, [&] {
    return GetFileInformationByHandleEx(AsHandle(folder_.Handle().Get()), question, buffer_.get(),
                                        static_cast<DWORD>(capacity_));
  });
  started_ = true;
  found = !listed.Failed();
  filled_ = found ? capacity_ : 0;
  at_ = 0;
  return listed.Code() == ERROR_NO_MORE_FILES ? SystemStatus() : listed;
}

SystemStatus FolderEntries::Next(FolderEntry& entry, bool& found) {
  for (;;) {
    if (at_ == filled_) {
      const SystemStatus listed = Fill(found);
      if (!found) {
        return listed;
      }
    }
    const auto& record = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(buffer_.get() + at_);
    at_ = record.NextEntryOffset != 0 ? at_ + record.NextEntryOffset : filled_;
    const std::wstring_view name(record.FileName, record.FileNameLength / sizeof(wchar_t));
    if (name == L"." || name == L"..") {
      continue;
    }
    name_.assign(name);
    entry.name = name_.c_str();
    entry.letters = name_;
    entry.shortName = {record.ShortName, static_cast<std::size_t>(record.ShortNameLength) / sizeof(wchar_t)};
    entry.kind = KindOf(record);
    found = true;
    return {};
  }
}

}  // namespace kiv::platform
