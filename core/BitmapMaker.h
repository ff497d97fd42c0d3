#pragma once

#include "kivtools/Bitmap.h"

namespace kiv {

/// Makes bitmaps for operations that write every byte themselves.
class BitmapMaker {
 public:
  /// A bitmap whose bytes are whatever the memory held: whoever asks for it writes them all, those past the last pixel
  /// of each row too. Throws as Bitmap's constructor does.
  static Bitmap Unwritten(std::int32_t width, std::int32_t height, PixelFormat format);

  /// Bytes from a row of that width to the next.
  static constexpr std::uint64_t StrideOf(std::uint64_t width, PixelFormat format) noexcept {
    return (width * (format == PixelFormat::Rgb24 ? 3 : 4) + 3) / 4 * 4;
  }

 private:
  friend class Bitmap;
  /// Sets all but the pixels. Throws Error for an impossible size.
  static Bitmap WithoutMemory(std::int32_t width, std::int32_t height, PixelFormat format);
};

}  // namespace kiv
