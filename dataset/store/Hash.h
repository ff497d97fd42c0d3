#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kiv::store {

/// Mixes 32 bits one to one: different inputs have different results.
constexpr std::uint32_t Mix32(std::uint32_t value) noexcept {
  value = (value ^ value >> 16U) * 0x7FEB352DU;
  value = (value ^ value >> 15U) * 0x846CA68BU;
  return value ^ value >> 16U;
}

/// 32 well-mixed bits out of 64.
constexpr std::uint32_t Mix64(std::uint64_t value) noexcept {
  value = (value ^ value >> 32U) * 0xD6E8FEB86659FD93U;
  value = (value ^ value >> 32U) * 0xD6E8FEB86659FD93U;
  return static_cast<std::uint32_t>(value ^ value >> 32U);
}

/// 32 bits out of bytes.
inline std::uint32_t HashBytes(const char* bytes, std::size_t size, std::uint64_t seed) noexcept {
  std::uint64_t hash = seed ^ size * 0x9E3779B97F4A7C15U;
  std::uint64_t eight = 0;
  for (; size >= sizeof eight; bytes += sizeof eight, size -= sizeof eight) {
    std::memcpy(&eight, bytes, sizeof eight);
    hash = (hash ^ eight) * 0xD6E8FEB86659FD93U;
    hash ^= hash >> 32U;
  }
  eight = 0;
  if (size > 0) {
    std::memcpy(&eight, bytes, size);
  }
  return Mix64(hash ^ eight);
}

}  // namespace kiv::store
