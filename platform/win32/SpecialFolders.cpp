#include "platform/SpecialFolders.h"

#include <shlobj.h>
#include <windows.h>

#include <array>

#include "platform/SystemError.h"

namespace kiv::platform {

std::filesystem::path PathOfSpecialFolder(SpecialFolder folder, TextView operation) {
  std::array<wchar_t, MAX_PATH + 1> path{};
  const HRESULT result = SHGetFolderPathW(nullptr, static_cast<int>(folder), nullptr, SHGFP_TYPE_CURRENT, path.data());
  if (result != S_OK) {
    // The shell's results that wrap a system error are told as that error; others have texts of their own.
    throw SystemError(operation, HRESULT_FACILITY(result) == FACILITY_WIN32 ? HRESULT_CODE(result) : result);
  }
  return path.data();
}

}  // namespace kiv::platform
