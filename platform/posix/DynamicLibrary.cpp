#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include <cerrno>

#include "platform/Paths.h"
#include "platform/SystemError.h"

namespace kiv::platform {

namespace {

/// The error for a library that could not be loaded, in the words of the system's loader, which name the path. It gives
/// no code: a file that it could read and did not take for a library leaves none behind.
[[noreturn]] void ThrowLoaderError(std::int32_t code, const std::filesystem::path& path) {
  const std::int32_t known = code != 0 ? code : ENOEXEC;
  const char* const reason = dlerror();
  if (reason == nullptr) {
    SystemStatus(known).Throw("LoadedPackage", path);
  }
  throw OsError(known, "LoadedPackage: " + ShownPath(reason));
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path) {
  errno = 0;
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    ThrowLoaderError(errno, path);
  }
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::Symbol(const char* name) const noexcept {
  return dlsym(handle_, name);
}

}  // namespace kiv::platform
