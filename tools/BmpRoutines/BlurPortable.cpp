#include "tools/BmpRoutines/BlurKernels.h"

namespace kiv::bmp {
namespace {

/// Without `__restrict` the compiler would take what is written for one of the rows, and do one byte at a time.
void Row2(const std::uint8_t* const* rows, std::size_t bytes, Divisor divisor, std::uint8_t* __restrict out) {
  const std::uint8_t* const up = rows[0];
  const std::uint8_t* const own = rows[1];
  const std::uint8_t* const down = rows[2];
  const auto end = static_cast<std::ptrdiff_t>(bytes);
  for (std::ptrdiff_t i = 0; i < end; ++i) {
    const auto sum = static_cast<std::uint16_t>(5 * own[i] + own[i - 3] + own[i + 3] + up[i] + down[i]);
    out[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(sum * std::uint32_t{divisor.multiplier} >> 16U) >>
                                       divisor.shift);
  }
}

void Row3(const std::uint8_t* const* rows, std::size_t bytes, Divisor divisor, std::uint8_t* __restrict out) {
  const std::uint8_t* const up2 = rows[0];
  const std::uint8_t* const up = rows[1];
  const std::uint8_t* const own = rows[2];
  const std::uint8_t* const down = rows[3];
  const std::uint8_t* const down2 = rows[4];
  const auto end = static_cast<std::ptrdiff_t>(bytes);
  for (std::ptrdiff_t i = 0; i < end; ++i) {
    const auto sum =
        static_cast<std::uint16_t>(12 * own[i] + own[i - 6] + own[i - 3] + own[i + 3] + own[i + 6] + up[i - 3] + up[i] +
                                   up[i + 3] + down[i - 3] + down[i] + down[i + 3] + up2[i] + down2[i]);
    out[i] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(sum * std::uint32_t{divisor.multiplier} >> 16U) >>
                                       divisor.shift);
  }
}

template <void (*Row)(const std::uint8_t* const*, std::size_t, Divisor, std::uint8_t*)>
void Rows(const BlurStep& step) {
  for (std::size_t i = 0; i < 2; ++i) {
    Row(step.rows.data() + i, step.bytes, step.divisors[i], step.out[i]);
  }
}

}  // namespace

const BlurKernels kPortableBlurKernels = {Rows<Row2>, Rows<Row3>};

const BlurKernels& BestBlurKernels() noexcept {
  static const BlurKernels& best = VectorBlurKernels() != nullptr ? *VectorBlurKernels() : kPortableBlurKernels;
  return best;
}

}  // namespace kiv::bmp
