#pragma once

#include <algorithm>
#include <bit>

#include "dataset/query/Kernels.h"

/// Bits for the rows of a batch, put together and gone through.
namespace kiv::query {

template <class Combine>
Bits Combined(const Bits& left, const Bits& right, Combine combine) noexcept {
  Bits result;
  for (std::size_t i = 0; i < kWords; ++i) {
    result[i] = combine(left[i], right[i]);
  }
  return result;
}

inline Bits Both(const Bits& left, const Bits& right) noexcept {
  return Combined(left, right, [](std::uint64_t l, std::uint64_t r) { return l & r; });
}
inline Bits Either(const Bits& left, const Bits& right) noexcept {
  return Combined(left, right, [](std::uint64_t l, std::uint64_t r) { return l | r; });
}
inline Bits Without(const Bits& left, const Bits& right) noexcept {
  return Combined(left, right, [](std::uint64_t l, std::uint64_t r) { return l & ~r; });
}

inline bool IsEmpty(const Bits& bits) noexcept {
  return std::ranges::all_of(bits, [](std::uint64_t word) { return word == 0; });
}

inline Bits FirstRows(std::size_t count) noexcept {
  Bits bits{};
  for (std::size_t word = 0; word * 64 < count; ++word) {
    const std::size_t left = count - word * 64;
    bits[word] = left >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << left) - 1;
  }
  return bits;
}

inline bool IsSet(const Bits& bits, std::size_t row) noexcept {
  return (bits[row / 64] >> (row % 64) & 1U) != 0;
}
inline void Set(Bits& bits, std::size_t row) noexcept {
  bits[row / 64] |= std::uint64_t{1} << (row % 64);
}

/// Calls back with each row whose bit is set, in order, as long as it gives true.
template <class Callback>
bool ForEach(const Bits& bits, Callback callback) {
  for (std::size_t word = 0; word < kWords; ++word) {
    for (std::uint64_t left = bits[word]; left != 0; left &= left - 1) {
      if (!callback(word * 64 + static_cast<std::size_t>(std::countr_zero(left)))) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace kiv::query
