#include "kivtools/BmpRoutines.h"

#include <cstring>

#include "core/BitmapMaker.h"
#include "core/PixelRows.h"
#include "tools/BmpRoutines/Rasters.h"
#include "tools/ResolvedColour.h"

namespace kiv {
namespace {

/// The way from one colour to another in `length` steps.
class Way {
 public:
  Way(Colour from, Colour to, std::int32_t length)
      : from_(from), to_(to), length_(length), reciprocal_((kOne + Unsigned(length) - 1) / Unsigned(length)) {}

  [[nodiscard]] Colour At(std::int32_t step) const {
    return Channel(step, 0) | Channel(step, 8) << 8U | Channel(step, 16) << 16U;
  }

 private:
  /// 2 to the power 55 times a channel fits 64 bits, and is precise enough for every length whose sums fit 31 bits.
  static constexpr unsigned kShift = 55;
  static constexpr std::uint64_t kOne = std::uint64_t{1} << kShift;
  static constexpr std::int32_t kLongest = 0x7FFFFFFF / 255;
  static_assert(std::uint64_t{255} * kLongest * kLongest < kOne);

  static constexpr std::uint64_t Unsigned(std::int32_t number) { return static_cast<std::uint64_t>(number); }

  [[nodiscard]] Colour Channel(std::int32_t step, unsigned shift) const {
    const std::uint32_t sum = (from_ >> shift & 0xFFU) * static_cast<std::uint32_t>(length_ - step) +
                              (to_ >> shift & 0xFFU) * static_cast<std::uint32_t>(step);
    if (length_ <= kLongest) {
      return static_cast<Colour>(sum * reciprocal_ >> kShift);
    }
    return static_cast<Colour>(static_cast<std::int32_t>(sum) / length_) & 0xFFU;  // 32-bit numbers, which wrap
  }

  Colour from_;
  Colour to_;
  std::int32_t length_;
  std::uint64_t reciprocal_;
};

/// The bytes between a row's last pixel and the next row are zero, in files too.
void ClearRowEnds(Bitmap& bitmap) {
  const auto pixels = 3 * static_cast<std::size_t>(bitmap.Width());
  const std::size_t rest = static_cast<std::size_t>(bitmap.Stride()) - pixels;
  for (std::int32_t y = 0; rest > 0 && y < bitmap.Height(); ++y) {
    std::memset(bitmap.ScanLine(y) + pixels, 0, rest);
  }
}

template <class Fill>
Bitmap Filled(std::int32_t width, std::int32_t height, Colour from, Colour to, Fill fill) {
  Bitmap bitmap = BitmapMaker::Unwritten(width, height, PixelFormat::Rgb24);
  fill(RasterOf(bitmap), ResolvedColour(from), ResolvedColour(to));
  ClearRowEnds(bitmap);
  return bitmap;
}

}  // namespace

namespace bmp {

void FillFromLeft(const Raster& raster, Colour from, Colour to) {
  if (raster.width == 0 || raster.height == 0) {
    return;
  }
  const Way way(from, to, raster.width);
  std::uint8_t* const first = raster.Row(0);
  for (std::int32_t x = 0; x < raster.width; ++x) {
    const Colour colour = way.At(x);
    std::uint8_t* const pixel = first + 3 * std::ptrdiff_t{x};
    pixel[0] = static_cast<std::uint8_t>(colour >> 16U);
    pixel[1] = static_cast<std::uint8_t>(colour >> 8U);
    pixel[2] = static_cast<std::uint8_t>(colour);
  }
  for (std::int32_t y = 1; y < raster.height; ++y) {
    std::memcpy(raster.Row(y), first, raster.RowBytes());
  }
}

void FillFromTop(const Raster& raster, Colour from, Colour to) {
  if (raster.width == 0 || raster.height == 0) {
    return;
  }
  const Way way(from, to, raster.height);
  for (std::int32_t y = 0; y < raster.height; ++y) {
    FillPixels(raster.Row(y), static_cast<std::size_t>(raster.width), 3, way.At(y));
  }
}

}  // namespace bmp

Bitmap GenerateHorizFountainFill(std::int32_t width, std::int32_t height, Colour from, Colour to) {
  return Filled(width, height, from, to, bmp::FillFromLeft);
}

Bitmap GenerateVertFountainFill(std::int32_t width, std::int32_t height, Colour from, Colour to) {
  return Filled(width, height, from, to, bmp::FillFromTop);
}

void AntiAliasBmp(Bitmap& bitmap, Colour /*colour*/, std::int32_t level) {
  if (bitmap.Format() != PixelFormat::Rgb24) {
    throw Error("Nu pot face anti-alias decat pe bitmapuri cu pf24bit");
  }
  bmp::Blur(RasterOf(bitmap), level);
}

}  // namespace kiv
