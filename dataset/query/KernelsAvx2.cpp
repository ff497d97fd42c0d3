#include <algorithm>
#include <bit>
#include <limits>

#include "dataset/query/Kernels.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

namespace kiv::query {
namespace {

#define KIV_FOR_PROCESSOR __attribute__((target("avx2,bmi,popcnt")))

struct Integers {
  using Register = __m256i;
  KIV_FOR_PROCESSOR static Register LoadBytes(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
  }
  KIV_FOR_PROCESSOR static Register Either(Register left, Register right) { return _mm256_or_si256(left, right); }
};

struct Vector16 : Integers {
  using Element = std::int16_t;
  static constexpr std::size_t kCount = 16;
  KIV_FOR_PROCESSOR static Register All(Element value) { return _mm256_set1_epi16(value); }
  KIV_FOR_PROCESSOR static Register Load(const Element* from) { return LoadBytes(from); }
  KIV_FOR_PROCESSOR static Register Above(Register left, Register right) { return _mm256_cmpgt_epi16(left, right); }
  KIV_FOR_PROCESSOR static std::uint32_t Bits(Register mask) {
    // The packing instruction works on the two halves of a register by themselves.
    const Register packed = _mm256_permute4x64_epi64(_mm256_packs_epi16(mask, _mm256_setzero_si256()), 0xD8);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(packed));
  }
};

struct Vector32 : Integers {
  using Element = std::int32_t;
  static constexpr std::size_t kCount = 8;
  KIV_FOR_PROCESSOR static Register All(Element value) { return _mm256_set1_epi32(value); }
  KIV_FOR_PROCESSOR static Register Load(const Element* from) { return LoadBytes(from); }
  KIV_FOR_PROCESSOR static Register Above(Register left, Register right) { return _mm256_cmpgt_epi32(left, right); }
  KIV_FOR_PROCESSOR static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(mask)));
  }
};

struct Vector64 : Integers {
  using Element = std::int64_t;
  static constexpr std::size_t kCount = 4;
  KIV_FOR_PROCESSOR static Register Zero() { return _mm256_setzero_si256(); }
  KIV_FOR_PROCESSOR static Register All(Element value) { return _mm256_set1_epi64x(value); }
  KIV_FOR_PROCESSOR static Register Load(const Element* from) { return LoadBytes(from); }
  KIV_FOR_PROCESSOR static Register Above(Register left, Register right) { return _mm256_cmpgt_epi64(left, right); }
  KIV_FOR_PROCESSOR static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm256_movemask_pd(_mm256_castsi256_pd(mask)));
  }
  /// Adds the halves of the values of 64 rows whose bits are set.
  KIV_FOR_PROCESSOR static void AddHalves(const Element* values, std::uint64_t bits, Register& lows, Register& highs) {
    const Register bias = All(std::numeric_limits<std::int64_t>::min());
    const Register low = All(0xFFFF'FFFF);
    const Register own = _mm256_set_epi32(8, 8, 4, 4, 2, 2, 1, 1);
    for (std::size_t i = 0; i < 64; i += kCount, bits >>= kCount) {
      const Register all = _mm256_set1_epi32(static_cast<int>(bits & 15U));
      const Register chosen = _mm256_cmpeq_epi32(_mm256_and_si256(all, own), own);
      const Register value = _mm256_and_si256(_mm256_xor_si256(Load(values + i), bias), chosen);
      lows = _mm256_add_epi64(lows, _mm256_and_si256(value, low));
      highs = _mm256_add_epi64(highs, _mm256_srli_epi64(value, 32));
    }
  }
  KIV_FOR_PROCESSOR static std::int64_t Total(Register sums) {
    std::array<std::int64_t, kCount> each;
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(each.data()), sums);
    return each[0] + each[1] + each[2] + each[3];
  }
};

struct VectorDouble {
  using Element = double;
  using Register = __m256d;
  static constexpr std::size_t kCount = 4;
  KIV_FOR_PROCESSOR static Register All(Element value) { return _mm256_set1_pd(value); }
  KIV_FOR_PROCESSOR static Register Load(const Element* from) { return _mm256_loadu_pd(from); }
  KIV_FOR_PROCESSOR static Register Above(Register left, Register right) {
    return _mm256_cmp_pd(left, right, _CMP_GT_OQ);
  }
  KIV_FOR_PROCESSOR static Register Either(Register left, Register right) { return _mm256_or_pd(left, right); }
  KIV_FOR_PROCESSOR static std::uint32_t Bits(Register mask) {
    return static_cast<std::uint32_t>(_mm256_movemask_pd(mask));
  }
};

#include "dataset/query/KernelLoops.h"

#undef KIV_FOR_PROCESSOR

constexpr Kernels kAvx2Kernels = {Range<Vector16>,
                                  Range<Vector32>,
                                  Range<Vector64>,
                                  Range<VectorDouble>,
                                  Above<Vector64>,
                                  Above<VectorDouble>,
                                  Sum64};

}  // namespace

const Kernels* Avx2Kernels() noexcept {
  __builtin_cpu_init();
  const bool offered =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt");
  return offered ? &kAvx2Kernels : nullptr;
}

}  // namespace kiv::query

#else

namespace kiv::query {

const Kernels* Avx2Kernels() noexcept {
  return nullptr;
}

}  // namespace kiv::query

#endif
