#include <dlfcn.h>

#include "kivtools/Package.h"

namespace {

kiv::Handle ThisModule() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&ThisModule), &info);
  return reinterpret_cast<kiv::Handle>(info.dli_fbase);
}

__attribute__((constructor)) void Attach() {
  kiv::PackageLoadEntry(ThisModule(), 1);
}

__attribute__((destructor)) void Detach() {
  kiv::PackageLoadEntry(ThisModule(), 0);
}

}  // namespace
