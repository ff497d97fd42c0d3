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
  constexpr std::uint64_t kFactor = 0xD6E8FEB86659FD93U;
  const auto load = [bytes]<class Word>(std::size_t at, Word word) {
    std::memcpy(&word, bytes + at, sizeof word);
    return std::uint64_t{word};
  };
  std::uint64_t hash = seed ^ size * 0x9E3779B97F4A7C15U;
  std::uint64_t last = 0;
  if (size >= 8) {
    for (std::size_t at = 0; at + 8 < size; at += 8) {
      hash = (hash ^ load(at, std::uint64_t{})) * kFactor;
      hash ^= hash >> 32U;
    }
    // The last eight, some of which have been taken already: no loop over what is left.
    last = load(size - 8, std::uint64_t{});
  } else if (size >= 4) {
    last = load(0, std::uint32_t{}) | load(size - 4, std::uint32_t{}) << 32U;
  } else if (size > 0) {
    last = load(0, std::uint8_t{}) | load(size / 2, std::uint8_t{}) << 8U | load(size - 1, std::uint8_t{}) << 16U;
  }
  return Mix64(hash ^ last);
}

}  // namespace kiv::store
