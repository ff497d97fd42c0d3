#include "platform/Diskettes.h"

// shlobj.h needs what windows.h defines.
// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include <array>

#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

/// While it lives this thread's failures of drives are told by their code alone. The mode of the whole process, which
/// other threads may be setting and putting back at the same time, stays as it is.
class NoBoxOfTheSystem {
 public:
  NoBoxOfTheSystem() noexcept { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before_); }
  ~NoBoxOfTheSystem() { SetThreadErrorMode(before_, nullptr); }
  NoBoxOfTheSystem(const NoBoxOfTheSystem&) = delete;
  NoBoxOfTheSystem& operator=(const NoBoxOfTheSystem&) = delete;

 private:
  DWORD before_ = 0;
};

}  // namespace

std::int32_t Diskettes::VolumeError() const noexcept {
  const NoBoxOfTheSystem quiet;
  DWORD serial = 0;
  DWORD longestName = 0;
  DWORD flags = 0;
  std::array<wchar_t, 128> fileSystem{};
  const BOOL told = GetVolumeInformationW(L"A:\\", nullptr, 0, &serial, &longestName, &flags, fileSystem.data(),
                                          static_cast<DWORD>(fileSystem.size()));
  return told != 0 ? 0 : LastStatus().Code();
}

Text Diskettes::PathOf(TextView path) const {
  return Text(path);
}

std::int32_t Diskettes::ShowFormatDialog(TextView /*operation*/, Handle owner, std::uint32_t drive) const {
  auto* const window = reinterpret_cast<HWND>(owner);  // NOLINT(performance-no-int-to-ptr): a handle is a number
  return static_cast<std::int32_t>(SHFormatDrive(window, drive, SHFMT_ID_DEFAULT, SHFMT_OPT_FULL));
}

void SetDisketteFolder(TextView operation, TextView folder) {
  throw SystemError(Text(operation) + ": " + Text(folder), ERROR_NOT_SUPPORTED);
}

}  // namespace kiv::platform
