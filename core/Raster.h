#pragma once

#include <cstddef>
#include <cstdint>

#include "kivtools/Bitmap.h"

namespace kiv {

/// Rows of pixels of 24 bits in anybody's memory: a Bitmap's, or what a host of another language lends.
struct Raster {
  std::uint8_t* pixels = nullptr;  ///< the first byte of the top row
  std::ptrdiff_t stride = 0;       ///< bytes from a row to the one below it; negative where they lie upside down
  std::int32_t width = 0;
  std::int32_t height = 0;

  [[nodiscard]] std::uint8_t* Row(std::int32_t y) const noexcept { return pixels + y * stride; }
  [[nodiscard]] std::size_t RowBytes() const noexcept { return 3 * static_cast<std::size_t>(width); }
};

/// The pixels of a bitmap of the format Rgb24.
inline Raster RasterOf(Bitmap& bitmap) {
  const bool empty = bitmap.Width() == 0 || bitmap.Height() == 0;
  return {empty ? nullptr : bitmap.ScanLine(0), bitmap.Stride(), bitmap.Width(), bitmap.Height()};
}

}  // namespace kiv
