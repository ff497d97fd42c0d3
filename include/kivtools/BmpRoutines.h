/// @file
/// The unit BmpRoutines: fills between two colours as new pictures, and a soft blur.
///
/// Colours are 0x00BBGGRR; one with a top byte names a system colour and is resolved by the host first.
#pragma once

#include <cstdint>

#include "kivtools/Bitmap.h"

namespace kiv {

/// A picture that goes from one colour on the left towards another on the right. Column x has, in each channel,
/// `(from * (width - x) + to * x) / width` in 32-bit arithmetic, cut: the first column is `from`, the last one step
/// short of `to`. A width or a height of 0 gives an empty picture. Throws Error for a negative size or an impossible
/// one.
///
///     GenerateHorizFountainFill(2, 1, 0x000000, 0xFFFFFF)   // pixels 0x000000 and 0x7F7F7F
[[nodiscard]] KIV_API Bitmap GenerateHorizFountainFill(std::int32_t width, std::int32_t height, Colour from, Colour to);

/// The same from the top down: row y has `(from * (height - y) + to * y) / height` in each channel.
///
///     GenerateVertFountainFill(1, 2, 0x000000, 0xFFFFFF)   // rows 0x000000 and 0x7F7F7F
[[nodiscard]] KIV_API Bitmap GenerateVertFountainFill(std::int32_t width, std::int32_t height, Colour from, Colour to);

/// Softens a picture in place: each channel of each pixel becomes a weighted mean, cut, of those around it that lie
/// within the picture. Level 2, and all below: the pixel itself weighs 5, its four direct neighbours 1 each. Level 3,
/// and all above: the pixel itself weighs 12, the twelve at most two steps away 1 each. `colour` is not used. Throws
/// Error, "Nu pot face anti-alias decat pe bitmapuri cu pf24bit", for another format than PixelFormat::Rgb24, and
/// std::bad_alloc; the picture is then as it was.
///
///     AntiAliasBmp(bitmap, 0, 2)   // a white pixel on black becomes 141, its direct neighbours 28
KIV_API void AntiAliasBmp(Bitmap& bitmap, Colour colour, std::int32_t level);

}  // namespace kiv
