#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kiv {

/// CRC-32C (the Castagnoli polynomial, reflected) of the bytes, or of all of them together where `before` is that of
/// the bytes before. Example: 0xE3069283 for "123456789".
std::uint32_t Crc32c(std::span<const std::byte> bytes, std::uint32_t before = 0) noexcept;

namespace crc32c {

/// Carries the register, which begins and ends inverted, over the bytes.
using Kernel = std::uint32_t (*)(std::uint32_t, std::span<const std::byte>) noexcept;

/// With eight tables, on any processor.
std::uint32_t ByTables(std::uint32_t crc, std::span<const std::byte> bytes) noexcept;

/// With the processor's own instruction, null where it has none.
Kernel ByInstruction() noexcept;

}  // namespace crc32c
}  // namespace kiv
