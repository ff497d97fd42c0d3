#include <algorithm>
#include <bit>
#include <limits>

#include "dataset/query/Kernels.h"

#if defined(__SSE2__)

#include <immintrin.h>

namespace kiv::query {
namespace {

#define KIV_FOR_PROCESSOR

struct Integers {
  using Register = __m128i;
  static Register LoadBytes(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
  static Register Either(Register left, Register right) { return _mm_or_si128(left, right); }
};

struct Vector16 : Integers {
  using Element = std::int16_t;
  static constexpr std::size_t kCount = 8;
  static Register All(Element value) { return _mm_set1_epi16(value); }
  static Register Load(const Element* from) { return LoadBytes(from); }
  static Register Above(Register left, Register right) { return _mm_cmpgt_epi16(left, right); }
  static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(mask, _mm_setzero_si128())));
  }
};

struct Vector32 : Integers {
  using Element = std::int32_t;
  static constexpr std::size_t kCount = 4;
  static Register All(Element value) { return _mm_set1_epi32(value); }
  static Register Load(const Element* from) { return LoadBytes(from); }
  static Register Above(Register left, Register right) { return _mm_cmpgt_epi32(left, right); }
  static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(mask)));
  }
};

struct Vector64 : Integers {
  using Element = std::int64_t;
  static constexpr std::size_t kCount = 2;
  static Register Zero() { return _mm_setzero_si128(); }
  static Register All(Element value) { return _mm_set1_epi64x(value); }
  static Register Load(const Element* from) { return LoadBytes(from); }
  /// There is no such comparison of 64 bits: the upper halves decide, where they are equal the lower ones as unsigned
  /// numbers do. Only the top bit of each element counts.
  static Register Above(Register left, Register right) {
    const Register unsignedLow = _mm_set1_epi64x(0x8000'0000);
    const Register above = _mm_cmpgt_epi32(_mm_xor_si128(left, unsignedLow), _mm_xor_si128(right, unsignedLow));
    const Register lowAbove = _mm_shuffle_epi32(above, _MM_SHUFFLE(2, 2, 0, 0));
    return _mm_or_si128(above, _mm_and_si128(_mm_cmpeq_epi32(left, right), lowAbove));
  }
  static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm_movemask_pd(_mm_castsi128_pd(mask)));
  }
  /// Adds the halves of the values of 64 rows whose bits are set.
  static void AddHalves(const Element* values, std::uint64_t bits, Register& lows, Register& highs) {
    const Register bias = _mm_set1_epi64x(std::numeric_limits<std::int64_t>::min());
    const Register low = _mm_set1_epi64x(0xFFFF'FFFF);
    const Register own = _mm_set_epi32(2, 2, 1, 1);
    for (std::size_t i = 0; i < 64; i += kCount, bits >>= kCount) {
      const Register both = _mm_set1_epi32(static_cast<int>(bits & 3U));
      const Register chosen = _mm_cmpeq_epi32(_mm_and_si128(both, own), own);
      const Register value = _mm_and_si128(_mm_xor_si128(Load(values + i), bias), chosen);
      lows = _mm_add_epi64(lows, _mm_and_si128(value, low));
      highs = _mm_add_epi64(highs, _mm_srli_epi64(value, 32));
    }
  }
  static std::int64_t Total(Register sums) {
    std::array<std::int64_t, kCount> each;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(each.data()), sums);
    return each[0] + each[1];
  }
};

struct VectorDouble {
  using Element = double;
  using Register = __m128d;
  static constexpr std::size_t kCount = 2;
  static Register All(Element value) { return _mm_set1_pd(value); }
  static Register Load(const Element* from) { return _mm_loadu_pd(from); }
  static Register Above(Register left, Register right) { return _mm_cmpgt_pd(left, right); }
  static Register Either(Register left, Register right) { return _mm_or_pd(left, right); }
  static std::uint32_t Bits(Register mask) { return static_cast<std::uint32_t>(_mm_movemask_pd(mask)); }
};

#include "dataset/query/KernelLoops.h"

#undef KIV_FOR_PROCESSOR

constexpr Kernels kSse2Kernels = {Range<Vector16>,
                                  Range<Vector32>,
                                  Range<Vector64>,
                                  Range<VectorDouble>,
                                  Above<Vector64>,
                                  Above<VectorDouble>,
                                  Sum64};

}  // namespace

const Kernels* Sse2Kernels() noexcept {
  return &kSse2Kernels;
}

}  // namespace kiv::query

#else

namespace kiv::query {

const Kernels* Sse2Kernels() noexcept {
  return nullptr;
}

}  // namespace kiv::query

#endif
