#include <algorithm>
#include <array>
#include <bit>

#include "kivtools/WinUtil/Colours.h"
#include "platform/Random.h"

namespace kiv {
namespace {

constexpr std::int32_t kLast = 512;  // index of the last colour of a picture's gradient
constexpr std::int32_t kSeam = 128;  // columns of grain before a change of colour

struct Hsv {
  double hue = 0;
  double saturation = 0;
  double value = 0;
};

Hsv HsvOf(Colour colour) {
  std::int32_t red = 0;
  std::int32_t green = 0;
  std::int32_t blue = 0;
  ExtractRGB(colour, red, green, blue);
  Hsv hsv;
  RGB2HSV(static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue), hsv.hue,
          hsv.saturation, hsv.value);
  return hsv;
}

Colour ColourOf(const Hsv& hsv) {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  HSV2RGB(hsv.hue, hsv.saturation, hsv.value, red, green, blue);
  return Colour{red} | Colour{green} << 8U | Colour{blue} << 16U;
}

/// A pattern for a column of the grain: at the first that has clearly more or fewer bits than wanted, and at the latest
/// after a hundred more, the search ends. That this is the wrong way round gives the seams their look.
std::uint32_t Pattern(std::int32_t wanted, platform::Random& random) {
  constexpr std::uint32_t kRange = 0x7FFE;
  std::uint32_t pattern = random.Below(kRange);
  for (int i = 0; i < 100 && std::abs(std::popcount(pattern) - wanted) < 2; ++i) {
    pattern = random.Below(kRange);
  }
  return pattern;
}

void PaintGrain(Bitmap& bitmap, std::int32_t change, Colour colour, platform::Random& random) {
  constexpr std::int32_t kRows = 15;  // the pattern's bits, over and over
  const std::int32_t first = std::max(1, change - 1 - kSeam);
  for (std::int32_t x = first; x <= change - 1; ++x) {
    const std::int32_t percent = (x - first) * 100 / kSeam;
    const std::uint32_t pattern = Pattern(percent * kRows / 100, random);
    for (std::int32_t y = 0; y < bitmap.Height(); ++y) {
      if ((pattern >> (y % kRows) & 1U) != 0) {
        bitmap.SetPixel(x, y, colour);
      }
    }
  }
}

}  // namespace

void GenerateGradientFillColorArray(Colour from, Colour to, std::span<Colour> colours) {
  const Hsv start = HsvOf(from);
  const Hsv end = HsvOf(to);
  const auto steps = static_cast<double>(colours.size());
  for (std::size_t k = 0; k < colours.size(); ++k) {
    const auto left = static_cast<double>(colours.size() - k);
    const auto done = static_cast<double>(k);
    const auto between = [&](double a, double b) { return (left * a + done * b) / steps; };
    colours[k] = ColourOf(
        {between(start.hue, end.hue), between(start.saturation, end.saturation), between(start.value, end.value)});
  }
}

void GenerateGradientFillBitmap(Colour from, Colour to, Bitmap& bitmap) {
  platform::Random& random = platform::random_service.Current();
  random.Restart();
  std::array<Colour, kLast + 1> colours;
  GenerateGradientFillColorArray(from, to, colours);

  const std::int32_t right = bitmap.Width() - 1;
  const std::int32_t bottom = bitmap.Height() - 1;
  for (std::int32_t i = 0; i <= kLast; ++i) {
    bitmap.FillRect(i, 0, i < kLast ? i + 2 : right, bottom, colours[static_cast<std::size_t>(i)]);
  }
  std::int32_t before = 0;
  for (std::int32_t i = 1; i <= kLast; ++i) {
    const Colour colour = colours[static_cast<std::size_t>(i)];
    if (colour != colours[static_cast<std::size_t>(before)]) {
      PaintGrain(bitmap, i, colour, random);
      before = i;
    }
  }
}

}  // namespace kiv
