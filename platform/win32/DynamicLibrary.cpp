#include "platform/DynamicLibrary.h"

#include <windows.h>

#include "platform/SystemError.h"

namespace kiv::platform {

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path)
    : handle_(LoadLibraryExW(path.c_str(), nullptr, path.is_absolute() ? LOAD_WITH_ALTERED_SEARCH_PATH : 0)) {
  if (handle_ == nullptr) {
    LastStatus().Throw("LoadedPackage", path);
  }
}

DynamicLibrary::~DynamicLibrary() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

void* DynamicLibrary::Symbol(const char* name) const noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace kiv::platform
