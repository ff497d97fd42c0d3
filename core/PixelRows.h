#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// Writes `count` pixels of 3 or 4 bytes, all of one colour.
void FillPixels(std::uint8_t* out, std::size_t count, std::size_t pixelBytes, Colour colour) noexcept;

namespace pixels {

/// A pixel's bytes in memory; of the last only pixels of four bytes have one.
using Pixel = std::array<std::uint8_t, 4>;

/// After so many bytes whole pixels of either size and whole vectors both begin anew.
inline constexpr std::size_t kPeriod = 96;

/// Which byte of its pixel each byte of a row is; long enough to read 32 from any place of a period.
using Order = std::array<std::uint8_t, kPeriod + 32>;

/// Writes at least 32 bytes of equal pixels.
using Repeat = void (*)(std::uint8_t* out, std::size_t bytes, const Pixel& pixel, const Order& order) noexcept;

/// In plain C++.
void RepeatPortable(std::uint8_t* out, std::size_t bytes, const Pixel& pixel, const Order& order) noexcept;

/// For processors with 32-byte vectors; null where this processor has none.
Repeat VectorRepeat() noexcept;

/// The order of pixels of that many bytes.
const Order& OrderOf(std::size_t pixelBytes) noexcept;

}  // namespace pixels
}  // namespace kiv
