#include "platform/ProcessState.h"

#include <dlfcn.h>
#include <malloc.h>

#include <fstream>
#include <string>

namespace kiv::test {

bool IsLoaded(std::string_view fileName) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(fileName) != std::string::npos) {
      return true;
    }
  }
  return false;
}

Handle ModuleOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 ? reinterpret_cast<Handle>(info.dli_fbase) : 0;
}

std::size_t HeapInUse() {
  return mallinfo2().uordblks;
}

}  // namespace kiv::test
