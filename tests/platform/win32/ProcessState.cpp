#include "platform/ProcessState.h"

#include <malloc.h>
#include <windows.h>

#include <string>

namespace kiv::test {

bool IsLoaded(std::string_view fileName) {
  return GetModuleHandleA(std::string(fileName).c_str()) != nullptr;
}

Handle ModuleOf(const void* address) {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<const wchar_t*>(address), &module);
  return reinterpret_cast<Handle>(module);
}

std::size_t HeapInUse() {
  std::size_t bytes = 0;
  _HEAPINFO entry{};
  while (_heapwalk(&entry) == _HEAPOK) {
    bytes += entry._useflag == _USEDENTRY ? entry._size : 0;
  }
  return bytes;
}

}  // namespace kiv::test
