#include "platform/DynamicLibrary.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Paths.h"
#include "platform/SystemError.h"

namespace kiv::platform {

namespace {

/// Why a library could not be loaded: the system's loader has no code for it. A file that can be read and was not taken
/// is no library; a name without a folder was not found where libraries are.
std::int32_t CodeOfFailure(const std::filesystem::path& path) {
  if (!path.has_parent_path()) {
    return ENOENT;
  }
  return access(path.c_str(), R_OK) == 0 ? ENOEXEC : errno;
}

/// The error in the words of the system's loader, which name the path.
[[noreturn]] void ThrowLoaderError(const std::filesystem::path& path) {
  const char* const reason = dlerror();
  const SystemStatus failure(CodeOfFailure(path));
  if (reason == nullptr) {
    failure.Throw("LoadedPackage", path);
  }
  throw OsError(failure.Code(), "LoadedPackage: " + ShownPath(reason));
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path) {
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    ThrowLoaderError(path);
  }
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::Symbol(const char* name) const noexcept {
  return dlsym(handle_, name);
}

}  // namespace kiv::platform
