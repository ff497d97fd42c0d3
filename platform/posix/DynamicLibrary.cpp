#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include "kivtools/Errors.h"

namespace kiv::platform {

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    const char* const reason = dlerror();  // names the path itself
    throw OsError(0, std::string("LoadedPackage: ") + (reason != nullptr ? reason : path.c_str()));
  }
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::Symbol(const char* name) const noexcept {
  return dlsym(handle_, name);
}

}  // namespace kiv::platform
