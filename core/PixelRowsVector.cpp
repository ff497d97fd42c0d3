#include "core/PixelRows.h"

#if defined(__x86_64__) || defined(__i386__)

#include <immintrin.h>

#include <bit>

#define KIV_AVX2 __attribute__((target("avx2")))

namespace kiv::pixels {
namespace {

constexpr std::size_t kBlock = 32;
static_assert(kPeriod == 3 * kBlock);

KIV_AVX2 inline void Store(std::uint8_t* out, __m256i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
}

/// A row's 32 bytes from any place of a period on.
struct Blocks {
  [[nodiscard]] KIV_AVX2 __m256i At(std::size_t place) const {
    return _mm256_shuffle_epi8(pixel, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(order.data() + place)));
  }

  __m256i pixel;  ///< over and over
  const Order& order;
};

KIV_AVX2 void RepeatVector(std::uint8_t* out, std::size_t bytes, const Pixel& pixel, const Order& order) noexcept {
  const Blocks blocks{_mm256_set1_epi32(std::bit_cast<std::int32_t>(pixel)), order};
  // Up to a place from which no block lies across two lines of the cache.
  Store(out, blocks.At(0));
  const std::size_t start = (kBlock - reinterpret_cast<std::uintptr_t>(out) % kBlock) % kBlock;
  const __m256i first = blocks.At(start);
  const __m256i second = blocks.At(start + kBlock);
  const __m256i third = blocks.At(start + 2 * kBlock);
  std::uint8_t* at = out + start;
  std::uint8_t* const end = out + bytes;
  for (; end - at >= static_cast<std::ptrdiff_t>(kPeriod); at += kPeriod) {
    Store(at, first);
    Store(at + kBlock, second);
    Store(at + 2 * kBlock, third);
  }
  if (end - at >= static_cast<std::ptrdiff_t>(kBlock)) {
    Store(at, first);
  }
  if (end - at >= static_cast<std::ptrdiff_t>(2 * kBlock)) {
    Store(at + kBlock, second);
  }
  Store(end - kBlock, blocks.At((bytes - kBlock) % kPeriod));
}

}  // namespace

Repeat VectorRepeat() noexcept {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") ? &RepeatVector : nullptr;
}

}  // namespace kiv::pixels

#else

namespace kiv::pixels {

Repeat VectorRepeat() noexcept {
  return nullptr;
}

}  // namespace kiv::pixels

#endif
