#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/Int128.h"

namespace kiv::query {

/// The rows that are worked on together; a block of the store holds four times as many.
inline constexpr std::size_t kBatch = 2048;
inline constexpr std::size_t kWords = kBatch / 64;
/// One bit a row of a batch, from the lowest.
using Bits = std::array<std::uint64_t, kWords>;

/// The loops over columns. Every set of kernels gives the same results; they differ in what the processor must offer.
/// None reads beyond `count` elements. Bits of rows beyond the last are zero.
struct Kernels {
  // The rows whose value is `low`, `high` or between them.
  void (*range16)(const std::int16_t* values, std::size_t count, std::int16_t low, std::int16_t high, Bits& in);
  void (*range32)(const std::int32_t* values, std::size_t count, std::int32_t low, std::int32_t high, Bits& in);
  void (*range64)(const std::int64_t* values, std::size_t count, std::int64_t low, std::int64_t high, Bits& in);
  void (*rangeDouble)(const double* values, std::size_t count, double low, double high, Bits& in);
  // The rows whose left value is above the right one.
  void (*above64)(const std::int64_t* left, const std::int64_t* right, std::size_t count, Bits& above);
  void (*aboveDouble)(const double* left, const double* right, std::size_t count, Bits& above);
  /// The sum of the values of chosen rows.
  Int128 (*sum64)(const std::int64_t* values, std::size_t count, const Bits& chosen);
};

/// Kernels in plain C++.
extern const Kernels kPortableKernels;
/// Kernels for processors with 16- and 32-byte vectors; null where this processor has none.
const Kernels* Sse2Kernels() noexcept;
const Kernels* Avx2Kernels() noexcept;

/// The fastest kernels that this processor runs.
const Kernels& BestKernels() noexcept;

}  // namespace kiv::query
