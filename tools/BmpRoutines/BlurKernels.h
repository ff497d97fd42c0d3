#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kiv::bmp {

/// A division of what blurring sums up by its whole weight, as a multiplication by 2^(16 + shift) / weight and a shift.
struct Divisor {
  std::uint16_t multiplier;
  std::uint8_t shift;
};

/// How many bytes before and behind a row's own a kernel may read; they are zero.
inline constexpr std::size_t kRowMargin = 64;

/// Two rows of the result, of which each source row but the outermost serves both.
struct BlurStep {
  /// From the uppermost row that the first one needs to the lowest that the second one needs: 4 rows for level 2, 6 for
  /// level 3. Each is a copy with kRowMargin zeros before and behind its bytes.
  std::array<const std::uint8_t*, 6> rows;
  std::size_t bytes;  ///< of each row
  std::array<Divisor, 2> divisors;
  std::array<std::uint8_t*, 2> out;
  /// What will be read for the next step, for a processor that can fetch it meanwhile.
  std::array<const std::uint8_t*, 2> ahead;
};

/// Writes two rows. The pixels at the left and right edge are divided like all others, and corrected by the caller.
using BlurRows = void (*)(const BlurStep& step);

/// The loops over rows, by level. All give the same results; they differ in what the processor must offer.
struct BlurKernels {
  BlurRows level2;
  BlurRows level3;
};

/// Kernels in plain C++.
extern const BlurKernels kPortableBlurKernels;

/// Kernels for processors with 32-byte vectors; null where this processor has none.
const BlurKernels* VectorBlurKernels() noexcept;

/// The fastest kernels that this processor runs.
const BlurKernels& BestBlurKernels() noexcept;

/// The sum that a byte of the result is the mean of. `at` counts from the row's first byte; a row outside is zeros.
inline unsigned BlurSum2(const std::uint8_t* const* rows, std::ptrdiff_t at) noexcept {
  const std::uint8_t* const up = rows[0] + at;
  const std::uint8_t* const own = rows[1] + at;
  const std::uint8_t* const down = rows[2] + at;
  return 5U * own[0] + own[-3] + own[3] + up[0] + down[0];
}

inline unsigned BlurSum3(const std::uint8_t* const* rows, std::ptrdiff_t at) noexcept {
  const std::uint8_t* const up = rows[1] + at;
  const std::uint8_t* const own = rows[2] + at;
  const std::uint8_t* const down = rows[3] + at;
  return 12U * own[0] + own[-6] + own[-3] + own[3] + own[6] + up[-3] + up[0] + up[3] + down[-3] + down[0] + down[3] +
         rows[0][at] + rows[4][at];
}

}  // namespace kiv::bmp
