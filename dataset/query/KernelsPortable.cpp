#include <algorithm>
#include <bit>

#include "dataset/query/Kernels.h"

namespace kiv::query {
namespace {

template <class Condition>
void SetBits(std::size_t count, Bits& bits, Condition condition) {
  for (std::size_t word = 0; word < kWords; ++word) {
    std::uint64_t of64 = 0;
    const std::size_t end = std::min(count, word * 64 + 64);
    for (std::size_t i = word * 64; i < end; ++i) {
      of64 |= std::uint64_t{condition(i)} << (i % 64);
    }
    bits[word] = of64;
  }
}

template <class Value>
void Range(const Value* values, std::size_t count, Value low, Value high, Bits& in) {
  SetBits(count, in, [=](std::size_t i) { return values[i] >= low && values[i] <= high; });
}

template <class Value>
void Above(const Value* left, const Value* right, std::size_t count, Bits& above) {
  SetBits(count, above, [=](std::size_t i) { return left[i] > right[i]; });
}

Int128 Sum64(const std::int64_t* values, std::size_t count, const Bits& chosen) {
  Int128 sum;
  for (std::size_t word = 0; word * 64 < count; ++word) {
    for (std::uint64_t left = chosen[word]; left != 0; left &= left - 1) {
      sum += values[word * 64 + static_cast<std::size_t>(std::countr_zero(left))];
    }
  }
  return sum;
}

}  // namespace

constexpr Kernels kPortableKernels = {Range<std::int16_t>,
                                      Range<std::int32_t>,
                                      Range<std::int64_t>,
                                      Range<double>,
                                      Above<std::int64_t>,
                                      Above<double>,
                                      Sum64};

const Kernels& BestKernels() noexcept {
  static const Kernels& best = Avx2Kernels() != nullptr   ? *Avx2Kernels()
                               : Sse2Kernels() != nullptr ? *Sse2Kernels()
                                                          : kPortableKernels;
  return best;
}

}  // namespace kiv::query
