#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "kivtools/Host.h"
#include "kivtools/WinUtil/Colours.h"
#include "platform/Random.h"

namespace kiv {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

Colour Rgb(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return static_cast<Colour>(red | green << 8 | blue << 16);
}

TEST(ExtractRGB, GivesEveryChannelExactly) {
  for (std::int32_t i = 0; i < 256; ++i) {
    const std::int32_t expected[3] = {i, 255 - i, i ^ 0x55};
    std::int32_t red = -1;
    std::int32_t green = -1;
    std::int32_t blue = -1;
    ExtractRGB(Rgb(expected[0], expected[1], expected[2]), red, green, blue);
    EXPECT_EQ(red, expected[0]);
    EXPECT_EQ(green, expected[1]);
    EXPECT_EQ(blue, expected[2]);
  }
}

TEST(DeltaCuloare, ClampsAndTakesAFullGreenForMore) {
  struct {
    std::int32_t red, green, blue;
    Colour colour;
    Colour expected;
  } const cases[] = {
      {0, 0, 0, 0x123456, 0x123456},
      {0, -1, 0, 0x00FF00, 0x00FF00},
      {0, -2, 0, 0x00FF00, 0x00FE00},
      {-1, -1, -1, 0xFFFFFF, 0xFEFFFE},
      {0, -1, 0, 0x00FE00, 0x00FD00},
      {1, 2, 3, 0x000000, 0x030201},
      {300, 300, 300, 0x010203, 0xFFFFFF},
      {kMost, kMost, kMost, 0x0A0B0C, 0xFFFFFF},
      {kLeast, kLeast, kLeast, 0xFFFFFF, 0x000000},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(DeltaCuloare(each.red, each.green, each.blue, each.colour), each.expected) << std::hex << each.colour;
  }
}

TEST(ShiftingFamily, ShiftsByItsTable) {
  struct {
    Colour (*shift)(Colour);
    std::int32_t red, green, blue;
  } const table[] = {
      {Lite, 20, 20, 20},           {LiteLite, 10, 10, 10},      {Dark, -20, -20, -20},   {DarkDark, -10, -10, -10},
      {LiteRed, 0, -20, -20},       {LiteGreen, -20, 0, -20},    {LiteBlue, -20, -20, 0}, {LiteLiteRed, 0, -10, -10},
      {LiteLiteGreen, -10, 0, -10}, {LiteLiteBlue, -10, -10, 0},
  };
  const auto shifted = [](std::int32_t channel, std::int32_t delta) { return std::clamp(channel + delta, 0, 255); };
  for (const auto& row : table) {
    for (std::int32_t i = 0; i < 256; ++i) {
      const std::int32_t blue = 255 - i / 2;
      const std::int32_t wideGreen = i == 255 ? 256 : i;
      EXPECT_EQ(row.shift(Rgb(i / 3, i, blue)),
                Rgb(shifted(i / 3, row.red), shifted(wideGreen, row.green), shifted(blue, row.blue)))
          << &row - table << ": " << i;
    }
  }
  EXPECT_EQ(Dark(0xFFFFFF), 0xEBECEBU);
}

TEST(TurnFamily, RaisesItsChannelOrLowersTheOthers) {
  struct {
    std::int32_t own, other, another;
    std::int32_t turned, turnedOther, turnedAnother;
  } const cases[] = {
      {0, 0, 255, 50, 0, 255},   {200, 60, 40, 250, 60, 40},     {201, 60, 40, 201, 10, 40},
      {255, 50, 51, 255, 50, 1}, {255, 255, 255, 255, 205, 205},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(TurnRed(Rgb(each.own, each.other, each.another)), Rgb(each.turned, each.turnedOther, each.turnedAnother));
    EXPECT_EQ(TurnGreen(Rgb(each.other, each.own, each.another)),
              Rgb(each.turnedOther, each.turned, each.turnedAnother));
    EXPECT_EQ(TurnBlue(Rgb(each.other, each.another, each.own)),
              Rgb(each.turnedOther, each.turnedAnother, each.turned));
  }
}

TEST(Hsv, TellsHueSaturationAndValue) {
  struct {
    std::uint8_t red, green, blue;
    double hue, saturation, value;
  } const cases[] = {
      {128, 128, 128, 0, 0, 128 / 255.0}, {0, 0, 0, 0, 0, 0},           {255, 0, 0, 0, 1, 1},
      {255, 255, 0, 1.0 / 6, 1, 1},       {0, 255, 0, 1.0 / 3, 1, 1},   {0, 255, 255, 0.5, 1, 1},
      {0, 0, 255, 2.0 / 3, 1, 1},         {255, 0, 255, 5.0 / 6, 1, 1}, {100, 50, 50, 0, 0.5, 100 / 255.0},
  };
  for (const auto& each : cases) {
    double hue = -1;
    double saturation = -1;
    double value = -1;
    RGB2HSV(each.red, each.green, each.blue, hue, saturation, value);
    EXPECT_DOUBLE_EQ(hue, each.hue);
    EXPECT_DOUBLE_EQ(saturation, each.saturation);
    EXPECT_DOUBLE_EQ(value, each.value);
  }
}

TEST(Hsv, GivesTheChannelsOfEverySixth) {
  const double nan = std::nan("");
  struct {
    double hue, saturation, value;
    Colour expected;
  } const cases[] = {
      {0.3, 0, 0.5, 0x7F7F7F},   {0, 1, 1, 0x0000FF},       {0.1, 0.5, 1, 0x7FCCFF}, {0.25, 1, 1, 0x00FF7F},
      {0.4, 0.5, 0.8, 0x8ECC66}, {0.6, 0.5, 0.8, 0xCC8E66}, {0.7, 1, 0.5, 0x7F0019}, {0.9, 1, 1, 0x9800FF},
      {1, 1, 1, 0xFF00FF},       {1, 0.5, 1, 0xFF7FFF},     {7.5, 1, 1, 0xFF00FF},   {-0.05, 1, 1, 0x4C00FF},
      {0.3, 0, 2, 0xFFFFFF},     {0.3, 0, -1, 0x000000},    {0.3, 0, nan, 0x000000}, {nan, 0.5, 1, 0x007FFF},
      {0.3, nan, 1, 0x00FF00},
  };
  for (const auto& each : cases) {
    std::uint8_t red = 1;
    std::uint8_t green = 2;
    std::uint8_t blue = 3;
    HSV2RGB(each.hue, each.saturation, each.value, red, green, blue);
    EXPECT_EQ(Rgb(red, green, blue), each.expected)
        << std::hex << Rgb(red, green, blue) << " of " << each.hue << ", " << each.saturation << ", " << each.value;
  }
}

/// A number that changes with every bit of what goes into it.
class Digest {
 public:
  template <class Value>
  void Add(Value value) {
    for (std::size_t i = 0; i < sizeof value; ++i) {
      state_ = (state_ ^ (value >> 8 * i & 0xFFU)) * 0x100000001B3U;
    }
  }
  [[nodiscard]] std::uint64_t Value() const { return state_; }

 private:
  std::uint64_t state_ = 0xCBF29CE484222325U;
};

TEST(Hsv, GivesTheSameBytesOnEverySystem) {
  Digest digest;
  for (unsigned rgb = 0; rgb < 1U << 24U; rgb += 97) {
    double hue = 0;
    double saturation = 0;
    double value = 0;
    RGB2HSV(static_cast<std::uint8_t>(rgb), static_cast<std::uint8_t>(rgb >> 8U), static_cast<std::uint8_t>(rgb >> 16U),
            hue, saturation, value);
    digest.Add(std::bit_cast<std::uint64_t>(hue));
    digest.Add(std::bit_cast<std::uint64_t>(saturation));
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    HSV2RGB(hue, saturation, value, red, green, blue);
    digest.Add(Rgb(red, green, blue));
    HSV2RGB(hue / 2 + 0.3, 1 - saturation, value / 3, red, green, blue);
    digest.Add(Rgb(red, green, blue));
  }
  EXPECT_EQ(digest.Value(), 3280685997254150693U);
}

TEST(GradientArray, StopsOneStepShort) {
  std::vector<Colour> colours(4);
  GenerateGradientFillColorArray(0x000000, 0xFFFFFF, colours);
  EXPECT_EQ(colours, (std::vector<Colour>{0x000000, 0x3F3F3F, 0x7F7F7F, 0xBFBFBF}));
  colours.resize(1);
  GenerateGradientFillColorArray(0xFF0000, 0x00FF00, colours);
  EXPECT_EQ(colours, std::vector<Colour>{0xFF0000});
  GenerateGradientFillColorArray(0xFF0000, 0x00FF00, {});
}

TEST(GradientArray, GoesThroughTheHuesBetween) {
  std::vector<Colour> colours(4);
  GenerateGradientFillColorArray(0x0000FF, 0xFF0000, colours);  // red to blue: through green, not through magenta
  EXPECT_EQ(colours, (std::vector<Colour>{0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00}));
}

/// Gives the numbers that a test has written down, the last one over and over; keeps what it was asked.
class ScriptedRandom final : public platform::Random {
 public:
  explicit ScriptedRandom(std::vector<std::uint32_t> numbers) : numbers_(std::move(numbers)) {}

  void Restart() override { ++restarts; }
  std::uint32_t Below(std::uint32_t count) override {
    EXPECT_EQ(count, 0x7FFEU);
    const std::uint32_t number = numbers_[std::min(draws, numbers_.size() - 1)];
    ++draws;
    return number;
  }

  int restarts = 0;
  std::size_t draws = 0;

 private:
  std::vector<std::uint32_t> numbers_;
  Replacement<platform::Random> inUse_{platform::random_service, *this};
};

std::vector<Colour> PictureColours(Colour from, Colour to) {
  std::vector<Colour> colours(513);
  GenerateGradientFillColorArray(from, to, colours);
  return colours;
}

/// What strips alone leave in a picture: two columns each, the last colour up to the last column but one.
Bitmap PlainStrips(const std::vector<Colour>& colours, std::int32_t width, std::int32_t height) {
  Bitmap bitmap(width, height);
  for (std::int32_t y = 0; y < height - 1; ++y) {
    for (std::int32_t i = 0; i < 512; ++i) {
      bitmap.SetPixel(i, y, colours[static_cast<std::size_t>(i)]);
      bitmap.SetPixel(i + 1, y, colours[static_cast<std::size_t>(i)]);
    }
    for (std::int32_t x = 512; x < width - 1; ++x) {
      bitmap.SetPixel(x, y, colours[512]);
    }
  }
  return bitmap;
}

TEST(GradientBitmap, PaintsStripsAndLeavesTheLastRowAndColumn) {
  const ScriptedRandom noGrain({0});
  for (const auto& [width, height] : {std::pair{600, 4}, {514, 2}, {515, 1}, {700, 0}, {0, 5}}) {
    Bitmap bitmap(width, height);
    GenerateGradientFillBitmap(0x202020, 0x202020, bitmap);
    EXPECT_EQ(bitmap, PlainStrips(PictureColours(0x202020, 0x202020), width, height)) << width << " x " << height;
  }
  EXPECT_EQ(noGrain.draws, 0U);  // no change of colour, no grain
  EXPECT_EQ(noGrain.restarts, 5);
}

/// The grain by the plain rule, drawn over the strips.
void PlainGrain(const std::vector<Colour>& colours, Bitmap& bitmap, const std::vector<std::uint32_t>& numbers) {
  std::size_t draws = 0;
  const auto draw = [&] { return numbers[std::min(draws++, numbers.size() - 1)]; };
  std::size_t before = 0;
  for (std::int32_t i = 1; i <= 512; ++i) {
    const Colour colour = colours[static_cast<std::size_t>(i)];
    if (colour == colours[before]) {
      continue;
    }
    const std::int32_t first = std::max(1, i - 1 - 128);
    for (std::int32_t x = first; x <= i - 1; ++x) {
      const std::int32_t target = (x - first) * 100 / 128 * 15 / 100;
      std::uint32_t pattern = draw();
      for (int more = 0; more < 100 && std::abs(std::popcount(pattern) - target) < 2; ++more) {
        pattern = draw();
      }
      for (std::int32_t y = 0; y < bitmap.Height(); ++y) {
        if ((pattern >> y % 15 & 1U) != 0) {
          bitmap.SetPixel(x, y, colour);
        }
      }
    }
    before = static_cast<std::size_t>(i);
  }
}

TEST(GradientBitmap, PutsGrainBeforeEveryChangeOfColour) {
  std::vector<std::uint32_t> numbers;
  std::uint32_t number = 1;
  for (int i = 0; i < 5000; ++i) {
    number = number * 1664525 + 1013904223;
    numbers.push_back((number >> 8U) % 0x7FFE);
  }
  numbers.push_back(0x0421);  // for ever the same then, however often it is asked
  const std::pair<Colour, Colour> gradients[] = {{0x202020, 0x282828}, {0x102030, 0xFFEEDD}, {0x0000FF, 0xFF0000}};
  for (const auto& [from, to] : gradients) {
    for (const auto& [width, height] : {std::pair{600, 20}, {30, 20}, {512, 3}, {513, 3}}) {
      const ScriptedRandom scripted(numbers);
      Bitmap bitmap(width, height);
      GenerateGradientFillBitmap(from, to, bitmap);
      Bitmap expected = PlainStrips(PictureColours(from, to), width, height);
      PlainGrain(PictureColours(from, to), expected, numbers);
      ASSERT_EQ(bitmap, expected) << width << " x " << height;
    }
  }
}

TEST(GradientBitmap, DiffersEachTimeByTheClock) {
  Bitmap first(600, 100);
  Bitmap second(600, 100);
  GenerateGradientFillBitmap(0x202020, 0x808080, first);
  GenerateGradientFillBitmap(0x202020, 0x808080, second);
  EXPECT_NE(first, second);
}

/// A desktop on which a system colour has its own number in each channel.
class NumberedHost final : public host::Host {
 public:
  NumberedHost() { host::Install(*this); }
  host::Colours& GetColours() override { return colours_; }

 private:
  class Numbered final : public host::Colours {
   public:
    [[nodiscard]] Colour SystemColour(std::uint8_t number) const override { return 0xAA010101U * number; }
  };
  Numbered colours_;
};

TEST(Colours, OfTheSystemAreWhatTheHostSays) {
  const NumberedHost host;
  constexpr Colour kSystem = 0x80000005;  // 5 in each channel
  EXPECT_EQ(LiteLite(kSystem), 0x0F0F0FU);
  EXPECT_EQ(LiteLite(0xFF000007), 0x111111U);
  EXPECT_EQ(TurnGreen(kSystem), 0x053705U);
  std::int32_t red = 0;
  std::int32_t green = 0;
  std::int32_t blue = 0;
  ExtractRGB(kSystem, red, green, blue);
  EXPECT_EQ(Rgb(red, green, blue), 0x050505U);
  Colour colour = 0;
  GenerateGradientFillColorArray(kSystem, 0, {&colour, 1});
  EXPECT_EQ(colour, 0x050505U);
}

TEST(ClockSeededRandom, DrawsAllNumbersAboutEquallyOften) {
  platform::Random& random = platform::ClockSeededRandom();
  std::array<int, 10> uses{};
  for (int i = 0; i < 100000; ++i) {
    ++uses.at(random.Below(10));
  }
  for (const int count : uses) {
    EXPECT_NEAR(count, 10000, 600);
  }
  random.Restart();
  const std::uint32_t first = random.Below(0xFFFFFFFF);
  random.Restart();
  EXPECT_NE(random.Below(0xFFFFFFFF), first);
}

}  // namespace
}  // namespace kiv
