#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "core/Windows1250Kernels.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

namespace kiv::windows1250 {
namespace {

#define KIV_FOR_PROCESSOR __attribute__((target("avx2,bmi,popcnt")))

struct Block {
  struct Utf8 {
    std::uint32_t notAscii;
    std::uint32_t lead;
  };

  KIV_FOR_PROCESSOR static __m256i Load(const void* in) { return _mm256_loadu_si256(static_cast<const __m256i*>(in)); }
  KIV_FOR_PROCESSOR static void Store(void* out, __m256i block) {
    _mm256_storeu_si256(static_cast<__m256i*>(out), block);
  }
  KIV_FOR_PROCESSOR static std::uint32_t TopBits(__m256i bytes) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
  }

  KIV_FOR_PROCESSOR static std::uint32_t NotAscii(const unsigned char* in) { return TopBits(Load(in)); }

  KIV_FOR_PROCESSOR static Utf8 Utf8Bytes(const unsigned char* in) {
    const __m256i bytes = Load(in);
    const std::uint32_t notAscii = TopBits(bytes);
    return {notAscii, notAscii & TopBits(_mm256_slli_epi16(bytes, 1))};
  }

  KIV_FOR_PROCESSOR static std::uint32_t Widen(const unsigned char* in, char16_t* out) {
    const __m256i bytes = Load(in);
    Store(out, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(bytes)));
    Store(out + 16, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(bytes, 1)));
    return TopBits(bytes);
  }

  KIV_FOR_PROCESSOR static std::uint32_t Narrow(const char16_t* in, unsigned char* out) {
    const __m256i low = Load(in);
    const __m256i high = Load(in + 16);
    Store(out, InOrder(_mm256_packus_epi16(low, high)));
    return ~TopBits(InOrder(_mm256_packs_epi16(AreAscii(low), AreAscii(high))));
  }

  KIV_FOR_PROCESSOR static __m256i AreAscii(__m256i units) {
    return _mm256_cmpeq_epi16(_mm256_andnot_si256(_mm256_set1_epi16(0x7F), units), _mm256_setzero_si256());
  }
  /// The packing instructions work on the two halves of a register by themselves.
  KIV_FOR_PROCESSOR static __m256i InOrder(__m256i packed) { return _mm256_permute4x64_epi64(packed, 0xD8); }
};

#include "core/Windows1250Loops.h"

#undef KIV_FOR_PROCESSOR

constexpr Kernels kVectorKernels = {ToWide, FromWide, AsciiAhead, ToUtf8, FromUtf8};

}  // namespace

const Kernels* VectorKernels() noexcept {
  __builtin_cpu_init();
  const bool offered =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt");
  return offered ? &kVectorKernels : nullptr;
}

}  // namespace kiv::windows1250

#else

namespace kiv::windows1250 {

const Kernels* VectorKernels() noexcept {
  return nullptr;
}

}  // namespace kiv::windows1250

#endif
