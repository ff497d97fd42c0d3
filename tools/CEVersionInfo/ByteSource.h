#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kiv::version {

/// Bytes that are read in pieces: a file, or memory in tests.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// How many bytes there are.
  [[nodiscard]] virtual std::uint64_t Size() const noexcept = 0;
  /// Reads bytes from `offset` on; returns how many there were.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) noexcept = 0;
};

/// A little-endian number at the start of `bytes`, which hold at least as many.
inline std::uint16_t Number16(std::span<const std::uint8_t> bytes) noexcept {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8U);
}
inline std::uint32_t Number32(std::span<const std::uint8_t> bytes) noexcept {
  return Number16(bytes) | std::uint32_t{Number16(bytes.subspan(2))} << 16U;
}

}  // namespace kiv::version
