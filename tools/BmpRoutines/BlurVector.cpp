#include <cstring>

#include "tools/BmpRoutines/BlurKernels.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

#define KIV_AVX2 __attribute__((target("avx2")))

namespace kiv::bmp {
namespace {

constexpr std::size_t kBlock = 32;

/// The sums of 32 neighbouring bytes, in the order in which the unpacking instructions leave them; packing puts them
/// back into the bytes' own.
struct Sums {
  __m256i low;
  __m256i high;
};

KIV_AVX2 inline Sums operator+(const Sums& a, const Sums& b) {
  return {_mm256_add_epi16(a.low, b.low), _mm256_add_epi16(a.high, b.high)};
}

KIV_AVX2 inline __m256i Load(const std::uint8_t* in) {
  __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  // Kept in a register: both unpacking instructions would otherwise read it, and reading is what takes longest here.
  asm("" : "+x"(bytes));
  return bytes;
}

/// Two samples of each byte in turn.
KIV_AVX2 inline Sums Interleaved(__m256i a, __m256i b) {
  return {_mm256_unpacklo_epi8(a, b), _mm256_unpackhi_epi8(a, b)};
}

/// Their sum, each times its weight.
template <int kA, int kB>
KIV_AVX2 inline Sums Weighted(const Sums& interleaved) {
  const __m256i weights = _mm256_set1_epi16(kB << 8 | kA);
  return {_mm256_maddubs_epi16(interleaved.low, weights), _mm256_maddubs_epi16(interleaved.high, weights)};
}

KIV_AVX2 inline Sums SumOf(__m256i a, __m256i b) {
  return Weighted<1, 1>(Interleaved(a, b));
}

KIV_AVX2 inline Sums SumOf(__m256i a) {
  return Interleaved(a, _mm256_setzero_si256());
}

/// The sums for the same bytes of two rows, one below the other.
struct TwoRows {
  Sums first;
  Sums second;
};

struct Level2 {
  KIV_AVX2 static TwoRows SumsAt(const std::array<const std::uint8_t*, 6>& rows, std::size_t at) {
    const std::uint8_t* const first = rows[1] + at;
    const std::uint8_t* const second = rows[2] + at;
    const Sums own = Interleaved(Load(first), Load(second));
    return {Weighted<5, 1>(own) + SumOf(Load(first - 3), Load(first + 3)) + SumOf(Load(rows[0] + at)),
            Weighted<1, 5>(own) + SumOf(Load(second - 3), Load(second + 3)) + SumOf(Load(rows[3] + at))};
  }
};

struct Level3 {
  KIV_AVX2 static TwoRows SumsAt(const std::array<const std::uint8_t*, 6>& rows, std::size_t at) {
    const std::uint8_t* const above = rows[1] + at;
    const std::uint8_t* const first = rows[2] + at;
    const std::uint8_t* const second = rows[3] + at;
    const std::uint8_t* const below = rows[4] + at;
    const Sums both = SumOf(Load(above), Load(below)) + SumOf(Load(first - 3), Load(first + 3)) +
                      SumOf(Load(second - 3), Load(second + 3));
    const Sums own = Interleaved(Load(first), Load(second));
    return {both + Weighted<12, 1>(own) + SumOf(Load(first - 6), Load(first + 6)) +
                SumOf(Load(above - 3), Load(above + 3)) + SumOf(Load(rows[0] + at)),
            both + Weighted<1, 12>(own) + SumOf(Load(second - 6), Load(second + 6)) +
                SumOf(Load(below - 3), Load(below + 3)) + SumOf(Load(rows[5] + at))};
  }
};

/// A Divisor in registers.
struct Division {
  KIV_AVX2 explicit Division(Divisor divisor)
      : multiplier(_mm256_set1_epi16(static_cast<short>(divisor.multiplier))),
        shift(_mm_cvtsi32_si128(divisor.shift)) {}

  [[nodiscard]] KIV_AVX2 __m256i Of(const Sums& sums) const {
    return _mm256_packus_epi16(_mm256_srl_epi16(_mm256_mulhi_epu16(sums.low, multiplier), shift),
                               _mm256_srl_epi16(_mm256_mulhi_epu16(sums.high, multiplier), shift));
  }

  __m256i multiplier;
  __m128i shift;
};

KIV_AVX2 inline void Store(std::uint8_t* out, __m256i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
}

template <class Level>
KIV_AVX2 void WriteBlocks(const BlurStep& step, std::uint8_t* first, std::uint8_t* second) {
  const Division ofFirst(step.divisors[0]);
  const Division ofSecond(step.divisors[1]);
  const std::array<const std::uint8_t*, 6> rows = step.rows;
  const std::array<const std::uint8_t*, 2> ahead = step.ahead;
  const std::size_t last = step.bytes < kBlock ? 0 : step.bytes - kBlock;  // it may lie over the one before it
  for (std::size_t at = 0;; at += kBlock) {
    at = at < last ? at : last;
    const TwoRows sums = Level::SumsAt(rows, at);
    Store(first + at, ofFirst.Of(sums.first));
    Store(second + at, ofSecond.Of(sums.second));
    if (at == last) {
      return;
    }
    _mm_prefetch(reinterpret_cast<const char*>(ahead[0] + at), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(ahead[1] + at), _MM_HINT_T0);
  }
}

template <class Level>
KIV_AVX2 void Rows(const BlurStep& step) {
  if (step.bytes >= kBlock) {
    WriteBlocks<Level>(step, step.out[0], step.out[1]);
    return;
  }
  std::array<std::uint8_t, kBlock> first;
  std::array<std::uint8_t, kBlock> second;
  WriteBlocks<Level>(step, first.data(), second.data());
  std::memcpy(step.out[0], first.data(), step.bytes);
  std::memcpy(step.out[1], second.data(), step.bytes);
}

constexpr BlurKernels kVectorBlurKernels = {Rows<Level2>, Rows<Level3>};

}  // namespace

const BlurKernels* VectorBlurKernels() noexcept {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") ? &kVectorBlurKernels : nullptr;
}

}  // namespace kiv::bmp

#else

namespace kiv::bmp {

const BlurKernels* VectorBlurKernels() noexcept {
  return nullptr;
}

}  // namespace kiv::bmp

#endif
