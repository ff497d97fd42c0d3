#pragma once

#include <cstdint>

namespace kiv {

/// The value in 32 bits, as 32-bit arithmetic leaves it. Example: 2^31 becomes -2^31.
constexpr std::int32_t Wrapped(std::int64_t value) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

}  // namespace kiv
