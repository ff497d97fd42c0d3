#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/SystemError.h"

namespace kiv::platform {

/// Memory of the system's own, by whole pages; given back with this object.
class PageMemory {
 public:
  PageMemory() noexcept = default;
  ~PageMemory();
  PageMemory(const PageMemory&) = delete;
  PageMemory& operator=(const PageMemory&) = delete;

  /// Reserves `size` bytes of zeros that begin with a page. To be called once.
  SystemStatus Reserve(std::size_t size) noexcept;

  [[nodiscard]] std::span<std::uint8_t> Bytes() const noexcept { return bytes_; }

 private:
  std::span<std::uint8_t> bytes_;
};

}  // namespace kiv::platform
