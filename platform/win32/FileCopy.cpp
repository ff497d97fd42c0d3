#include "platform/FileCopy.h"

#include <windows.h>
#include <winioctl.h>

#include <array>
#include <string>

#include "platform/win32/Nt.h"

namespace kiv::platform {
namespace {

/// The whole path of a name, which the system's copy asks for.
SystemStatus WholePath(const Folder& at, SystemName name, std::wstring& path) {
  if (&at == &Folder::Working()) {
    path = name.Get();
    return {};
  }
  path.assign(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetFinalPathNameByHandleW(AsHandle(at.Handle().Get()), path.data(),
                                                   static_cast<DWORD>(path.size()), FILE_NAME_NORMALIZED);
    if (length == 0) {
      return LastStatus();
    }
    const bool fits = length < path.size();
    path.resize(length);
    if (fits) {
      break;
    }
  }
  if (path.back() != L'\\') {
    path.push_back(L'\\');
  }
  path.append(name.Get());
  return {};
}

/// What a link or a junction holds, as long as the system lets it be.
struct LinkContent {
  std::array<std::byte, MAXIMUM_REPARSE_DATA_BUFFER_SIZE> bytes;
  DWORD size = 0;
  bool isFolder = false;
};

constexpr ULONG kLinkItself = FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT;

SystemStatus ReadLink(const Folder& at, SystemName name, LinkContent& content) noexcept {
  FileHandle handle;
  if (const SystemStatus opened = OpenHandle(handle, at, name, SystemCall::Open, {0, FILE_OPEN, kLinkItself});
      opened.Failed()) {
    return opened;
  }
  FILE_BASIC_INFO basic{};
  const SystemStatus asked = MakeCall(SystemCall::Query, [&] {
    return GetFileInformationByHandleEx(AsHandle(handle.Get()), FileBasicInfo, &basic, sizeof basic);
  });
  if (asked.Failed()) {
    return asked;
  }
  content.isFolder = (basic.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return MakeCall(SystemCall::Read, [&] {
    return DeviceIoControl(AsHandle(handle.Get()), FSCTL_GET_REPARSE_POINT, nullptr, 0, content.bytes.data(),
                           static_cast<DWORD>(content.bytes.size()), &content.size, nullptr);
  });
}

}  // namespace

SystemStatus CopiedFile::Open(const Folder& from, SystemName name) noexcept {
  from_ = &from;
  name_ = name;
  return Query(from, name, Links::AsThemselves, info_);
}

SystemStatus CopiedFile::CopyTo(const Folder& to, SystemName newName, CopyHints& /*hints*/) {
  std::wstring source;
  std::wstring copy;
  if (const SystemStatus named = WholePath(*from_, name_, source); named.Failed()) {
    return named;
  }
  if (const SystemStatus named = WholePath(to, newName, copy); named.Failed()) {
    return named;
  }
  BOOL cancelled = FALSE;
  return MakeCall(SystemCall::Copy, [&] {
    return CopyFileExW(source.c_str(), copy.c_str(), nullptr, nullptr, &cancelled, COPY_FILE_FAIL_IF_EXISTS);
  });
}

SystemStatus CopyNewLink(const Folder& from, SystemName name, const Folder& to, SystemName newName) {
  LinkContent content;
  if (const SystemStatus read = ReadLink(from, name, content); read.Failed()) {
    return read;
  }
  FileHandle made;
  const ULONG kind = content.isFolder ? FILE_DIRECTORY_FILE : FILE_NON_DIRECTORY_FILE;
  const Opening opening = {FILE_WRITE_DATA | FILE_WRITE_ATTRIBUTES | DELETE, FILE_CREATE, kind | kLinkItself};
  if (const SystemStatus opened = OpenHandle(made, to, newName, SystemCall::Open, opening); opened.Failed()) {
    return opened;
  }
  const SystemStatus set = MakeCall(SystemCall::Link, [&] {
    DWORD given = 0;
    return DeviceIoControl(AsHandle(made.Get()), FSCTL_SET_REPARSE_POINT, content.bytes.data(), content.size, nullptr,
                           0, &given, nullptr);
  });
  if (set.Failed()) {
    FILE_DISPOSITION_INFO disposition{TRUE};
    SetFileInformationByHandle(AsHandle(made.Get()), FileDispositionInfo, &disposition, sizeof disposition);
  }
  return set;
}

}  // namespace kiv::platform
