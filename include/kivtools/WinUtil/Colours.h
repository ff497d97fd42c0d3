/// @file
/// Tints of a colour, hue, saturation and value, and gradients between two colours.
///
/// Colours are 0x00BBGGRR. A colour with a top byte names one of the system's: the host is asked for its red, green and
/// blue first. What is given back never has a top byte.
#pragma once

#include <cstdint>
#include <span>

#include "kivtools/Bitmap.h"
#include "kivtools/Types.h"

namespace kiv {

/// The channels of a colour, each from 0 to 255.
///
///     ExtractRGB(0x00FF8001, red, green, blue)   // 1, 128, 255
KIV_API void ExtractRGB(Colour colour, std::int32_t& red, std::int32_t& green, std::int32_t& blue);

/// A colour with its channels raised by so much, or lowered for negative numbers, and each kept within 0 to 255. A full
/// green of 255 counts as 256 before the change, so that lowering it gives one more than one would expect.
///
///     DeltaCuloare(10, -10, 0, 0x0000C800)   // 0x00BE0A
///     DeltaCuloare(0, -1, 0, 0x0000FF00)     // 0x00FF00
KIV_API Colour DeltaCuloare(std::int32_t redDelta, std::int32_t greenDelta, std::int32_t blueDelta, Colour colour);

/// Lighter by 20 in each channel, as DeltaCuloare does it. Example: 0x101010 gives 0x242424.
KIV_API Colour Lite(Colour colour);
/// Lighter by 10. Example: 0x101010 gives 0x1A1A1A.
KIV_API Colour LiteLite(Colour colour);
/// Darker by 20. Example: 0xFFFFFF gives 0xEBECEB.
KIV_API Colour Dark(Colour colour);
/// Darker by 10, so less than Dark. Example: 0x101010 gives 0x060606.
KIV_API Colour DarkDark(Colour colour);
/// More red: green and blue lowered by 20. Example: 0x808080 gives 0x6C6C80.
KIV_API Colour LiteRed(Colour colour);
/// More green: red and blue lowered by 20. Example: 0x808080 gives 0x6C806C.
KIV_API Colour LiteGreen(Colour colour);
/// More blue: red and green lowered by 20. Example: 0x808080 gives 0x806C6C.
KIV_API Colour LiteBlue(Colour colour);
/// More red: green and blue lowered by 10. Example: 0x808080 gives 0x767680.
KIV_API Colour LiteLiteRed(Colour colour);
/// More green: red and blue lowered by 10. Example: 0x808080 gives 0x768076.
KIV_API Colour LiteLiteGreen(Colour colour);
/// More blue: red and green lowered by 10. Example: 0x808080 gives 0x807676.
KIV_API Colour LiteLiteBlue(Colour colour);

/// A colour pushed towards blue: blue raised by 50, or, where it is above 200, the others lowered by 50 as far as they
/// are above 50. Example: 0x96C8C8 gives 0xC8C8C8, and that in turn 0xFAC8C8.
KIV_API Colour TurnBlue(Colour colour);
/// The same towards red. Example: 0x283CC9 (red 201, green 60, blue 40) gives 0x280AC9.
KIV_API Colour TurnRed(Colour colour);
/// The same towards green. Example: 0x000000 gives 0x003200.
KIV_API Colour TurnGreen(Colour colour);

/// Hue, saturation and value of a colour, each from 0 to 1; the hue is a fraction of the circle and 0 for greys.
///
///     RGB2HSV(0, 255, 0, hue, saturation, value)   // 1/3, 1, 1
KIV_API void RGB2HSV(std::uint8_t red, std::uint8_t green, std::uint8_t blue, double& hue, double& saturation,
                     double& value);

/// The channels of a hue, saturation and value, each from 0 to 1; the channels are cut, not rounded, and what would lie
/// outside 0 to 255 is brought back there (not a number becomes 0). A hue of 1 or more, or below 0, lies between
/// magenta and red.
///
///     HSV2RGB(0, 0, 0.5, red, green, blue)   // 127, 127, 127
KIV_API void HSV2RGB(double hue, double saturation, double value, std::uint8_t& red, std::uint8_t& green,
                     std::uint8_t& blue);

/// Fills an array with the colours on the way from one to another. The way is straight in hue, saturation and value:
/// the hue passes through those between the two numbers, not along the shorter arc. The first entry is `from` (but for
/// cutting), the last one step short of `to`.
///
///     std::array<Colour, 2> colours;
///     GenerateGradientFillColorArray(0x000000, 0xFFFFFF, colours);   // 0x000000, 0x7F7F7F
KIV_API void GenerateGradientFillColorArray(Colour from, Colour to, std::span<Colour> colours);

/// Paints a gradient of 513 colours from left to right into a picture, with a grain of random pixels before each change
/// of colour. Column i has colour i; the last colour goes on to the last column but one. The last row and the last
/// column get random pixels alone. The picture should be at least 514 columns wide to show the whole gradient.
///
///     Bitmap bitmap(640, 48);
///     GenerateGradientFillBitmap(0x800000, 0xFFFFFF, bitmap);
KIV_API void GenerateGradientFillBitmap(Colour from, Colour to, Bitmap& bitmap);

}  // namespace kiv
