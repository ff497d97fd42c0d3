#include "platform/FolderEntries.h"

#include <string_view>

#include "platform/win32/Nt.h"

namespace kiv::platform {
namespace {

constexpr std::size_t kLongestEntry = 256;

/// The list has a reparse point's tag where other entries have the size of their extended attributes.
EntryKind KindOf(const FILE_ID_BOTH_DIR_INFO& record) noexcept {
  if ((record.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(record.EaSize) != 0) {
    return EntryKind::Link;
  }
  return (record.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

}  // namespace

FolderEntries::FolderEntries(const Folder& folder, std::size_t bufferSize)
    : folder_(folder), capacity_(bufferSize), buffer_(new std::byte[bufferSize]) {
  name_.reserve(kLongestEntry);
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
    entry.kind = KindOf(record);
    found = true;
    return {};
  }
}

}  // namespace kiv::platform
