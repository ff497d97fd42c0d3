#include "apps/kivtools/system/InputStream.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

HANDLE AsHandle(std::intptr_t handle) noexcept {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

}  // namespace

InputStream InputStream::Open(const std::filesystem::path& path, What what) {
  std::string name = ShownName(Utf8FromPath(path));
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    throw InputError(IsAFolder(name));
  }
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    const DWORD code = GetLastError();
    throw SystemError(CannotBeOpened(name), static_cast<std::int32_t>(code));
  }
  InputStream stream(reinterpret_cast<std::intptr_t>(handle), true, std::move(name));
  if (what == What::File && GetFileType(handle) != FILE_TYPE_DISK) {
    throw InputError(IsNotAFile(stream.name_));
  }
  return stream;
}

InputStream InputStream::Standard() {
  return {reinterpret_cast<std::intptr_t>(GetStdHandle(STD_INPUT_HANDLE)), false,
          Say({"standard input", "intrarea standard"}).Text()};
}

InputStream::InputStream(InputStream&& other) noexcept
    : handle_(other.handle_), owned_(std::exchange(other.owned_, false)), name_(std::move(other.name_)) {}

InputStream::~InputStream() {
  if (owned_) {
    CloseHandle(AsHandle(handle_));
  }
}

std::size_t InputStream::Read(char* into, std::size_t capacity) {
  constexpr std::size_t kMostAtOnce = 1U << 24U;
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(std::min(capacity, kMostAtOnce));
  if (ReadFile(AsHandle(handle_), into, wanted, &count, nullptr) == 0) {
    const DWORD code = GetLastError();
    if (code != ERROR_BROKEN_PIPE) {  // the writer of a pipe has closed it: the end
      throw SystemError(CannotBeRead(name_), static_cast<std::int32_t>(code));
    }
  }
  return count;
}

std::optional<std::uint64_t> InputStream::Size() const noexcept {
  LARGE_INTEGER size{};
  if (GetFileType(AsHandle(handle_)) != FILE_TYPE_DISK || GetFileSizeEx(AsHandle(handle_), &size) == 0) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(size.QuadPart);
}

}  // namespace kivtools
