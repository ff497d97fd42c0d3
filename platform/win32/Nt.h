#pragma once

// winternl.h needs what windows.h defines.
// clang-format off
#include <windows.h>
#include <winternl.h>
// clang-format on

#include <cstdint>

#include "platform/Files.h"
#include "platform/SystemCalls.h"

namespace kiv::platform {

inline HANDLE AsHandle(std::intptr_t handle) noexcept {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

inline std::intptr_t AsNumber(HANDLE handle) noexcept {
  return reinterpret_cast<std::intptr_t>(handle);
}

/// What a call of the system's inner interface came to, as GetLastError() would say it.
inline SystemStatus StatusOf(NTSTATUS status) noexcept {
  return status >= 0 ? SystemStatus() : SystemStatus(static_cast<std::int32_t>(RtlNtStatusToDosError(status)));
}

/// Makes a system call that gives 0 for failure.
template <class Call>
SystemStatus MakeCall(SystemCall kind, Call&& call) noexcept {
  if (const SystemStatus refused = Admitted(kind); refused.Failed()) {
    return refused;
  }
  return call() != 0 ? SystemStatus() : LastStatus();
}

/// Whether a reparse point with that tag is another name for something. One without a tag is, too: Wine shows the links
/// of the system below so, and what they lead to may lie anywhere.
inline bool IsLinkTag(ULONG tag) noexcept {
  return tag == 0 || IsReparseTagNameSurrogate(tag) != 0;
}

/// The system counts ticks from 1601 on.
inline constexpr std::int64_t kTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;

inline FILETIME SystemFileTime(FileTime time) noexcept {
  const auto ticks =
      static_cast<std::uint64_t>((time.seconds + kSecondsFrom1601To1970) * kTicksPerSecond + time.nanoseconds / 100);
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
}

/// A name as the system's inner interface takes it: with a folder, relative to that; without one, whole.
class NtName {
 public:
  /// Fails where a path makes no sense, or memory is short.
  SystemStatus Set(const Folder& at, SystemName name) noexcept;

  [[nodiscard]] UNICODE_STRING& Letters() noexcept { return letters_; }
  [[nodiscard]] HANDLE Root() const noexcept { return root_; }

 private:
  std::wstring whole_;
  UNICODE_STRING letters_{};
  HANDLE root_ = nullptr;
};

/// How an entry is opened, in the words of the inner interface.
struct Opening {
  ACCESS_MASK access;
  ULONG disposition;
  ULONG options;
  ULONG sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
};

/// Opens an entry; `kind` is what the gate is told. What the handle held is closed.
SystemStatus OpenHandle(FileHandle& handle, const Folder& at, SystemName name, SystemCall kind,
                        const Opening& opening) noexcept;

}  // namespace kiv::platform
