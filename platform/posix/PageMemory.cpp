#include "platform/PageMemory.h"

#include <sys/mman.h>

#include "platform/SystemCalls.h"

namespace kiv::platform {

PageMemory::~PageMemory() {
  if (!bytes_.empty()) {
    munmap(bytes_.data(), bytes_.size());
  }
}

SystemStatus PageMemory::Reserve(std::size_t size) noexcept {
  if (const SystemStatus refused = Admitted(SystemCall::Reserve); refused.Failed()) {
    return refused;
  }
  void* const start = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) {
    return LastStatus();
  }
  bytes_ = {static_cast<std::uint8_t*>(start), size};
  return {};
}

}  // namespace kiv::platform
