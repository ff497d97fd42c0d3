#include "platform/Files.h"

#include <windows.h>

#include <algorithm>
#include <string>

namespace kiv::platform {
namespace {

HANDLE AsHandle(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

std::intptr_t AsNumber(HANDLE handle) {
  return reinterpret_cast<std::intptr_t>(handle);
}

}  // namespace

std::optional<ReadOnlyFile> ReadOnlyFile::Open(const std::filesystem::path& path) noexcept {
  if (path.native().find(L'\0') != std::wstring::npos) {
    return std::nullopt;  // the system would open the file named before the zero
  }
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return std::nullopt;
  }
  LARGE_INTEGER size{};
  const bool regular = GetFileType(handle) == FILE_TYPE_DISK && GetFileSizeEx(handle, &size) != 0;
  ReadOnlyFile file(AsNumber(handle), regular ? static_cast<std::uint64_t>(size.QuadPart) : 0);
  return regular ? std::optional<ReadOnlyFile>(std::move(file)) : std::nullopt;
}

ReadOnlyFile::ReadOnlyFile(ReadOnlyFile&& other) noexcept : handle_(other.handle_), size_(other.size_) {
  other.handle_ = AsNumber(INVALID_HANDLE_VALUE);
}

ReadOnlyFile::~ReadOnlyFile() {
  if (AsHandle(handle_) != INVALID_HANDLE_VALUE) {
    CloseHandle(AsHandle(handle_));
  }
}

std::size_t ReadOnlyFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const noexcept {
  std::size_t done = 0;
  while (done < buffer.size()) {
    const std::uint64_t at = offset + done;
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(at);
    position.OffsetHigh = static_cast<DWORD>(at >> 32U);
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(buffer.size() - done, 1U << 30U));
    if (ReadFile(AsHandle(handle_), buffer.data() + done, wanted, &got, &position) == 0 || got == 0) {
      break;
    }
    done += got;
  }
  return done;
}

}  // namespace kiv::platform
