#pragma once

#include <algorithm>
#include <vector>

#include "tools/CEVersionInfo/ByteSource.h"

namespace kiv::version {

/// Bytes in memory that count how many of them were read.
class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  [[nodiscard]] std::uint64_t Size() const noexcept override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) noexcept override {
    const auto from = static_cast<std::size_t>(std::min<std::uint64_t>(offset, bytes_.size()));
    const std::size_t count = std::min(buffer.size(), bytes_.size() - from);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(from), count, buffer.begin());
    read += count;
    return count;
  }

  std::size_t read = 0;

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace kiv::version
