#include "platform/PageMemory.h"

#include <windows.h>

#include "platform/SystemCalls.h"

namespace kiv::platform {

PageMemory::~PageMemory() {
  if (!bytes_.empty()) {
    VirtualFree(bytes_.data(), 0, MEM_RELEASE);
  }
}

SystemStatus PageMemory::Reserve(std::size_t size) noexcept {
  if (const SystemStatus refused = Admitted(SystemCall::Reserve); refused.Failed()) {
    return refused;
  }
  void* const start = VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  if (start == nullptr) {
    return LastStatus();
  }
  bytes_ = {static_cast<std::uint8_t*>(start), size};
  return {};
}

}  // namespace kiv::platform
