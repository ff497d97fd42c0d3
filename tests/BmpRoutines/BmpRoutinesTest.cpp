#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "Expect.h"
#include "core/PixelRows.h"
#include "kivtools/BmpRoutines.h"
#include "tools/BmpRoutines/Rasters.h"

namespace kiv {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::int32_t Wrapped(std::int64_t number) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(number)));
}

/// One channel of a fill by the plain rule, in numbers of 32 bits that wrap.
std::uint8_t PlainBetween(std::int64_t from, std::int64_t to, std::int32_t at, std::int32_t length) {
  return static_cast<std::uint8_t>(Wrapped(from * (length - at) + to * at) / length);
}

Colour PlainColour(Colour from, Colour to, std::int32_t at, std::int32_t length) {
  Colour colour = 0;
  for (unsigned shift = 0; shift < 24; shift += 8) {
    colour |= Colour{PlainBetween(from >> shift & 0xFFU, to >> shift & 0xFFU, at, length)} << shift;
  }
  return colour;
}

/// Where a channel of a pixel lies, of rows without anything between them.
std::size_t Place(std::int32_t width, std::int32_t x, std::int32_t y, std::int32_t channel = 0) {
  return 3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) +
         static_cast<std::size_t>(channel);
}

/// The blur by the plain rule: every sample asked whether it lies within the picture.
Bytes PlainBlur(const Bytes& source, std::int32_t width, std::int32_t height, std::int32_t level) {
  Bytes result(source.size());
  const std::int32_t reach = level >= 3 ? 2 : 1;
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      std::int32_t weights = 0;
      std::int32_t sums[3] = {};
      for (std::int32_t dy = -reach; dy <= reach; ++dy) {
        for (std::int32_t dx = -reach; dx <= reach; ++dx) {
          const bool inside = x + dx >= 0 && x + dx < width && y + dy >= 0 && y + dy < height;
          if (std::abs(dx) + std::abs(dy) > reach || !inside) {
            continue;
          }
          const std::int32_t weight = dx != 0 || dy != 0 ? 1 : level >= 3 ? 12 : 5;
          weights += weight;
          for (std::int32_t channel = 0; channel < 3; ++channel) {
            sums[channel] += weight * source[Place(width, x + dx, y + dy, channel)];
          }
        }
      }
      for (std::int32_t channel = 0; channel < 3; ++channel) {
        result[Place(width, x, y, channel)] = static_cast<std::uint8_t>(sums[channel] / weights);
      }
    }
  }
  return result;
}

Bytes RandomBytes(std::size_t count, unsigned seed) {
  Bytes bytes(count);
  std::mt19937 random(seed);
  for (std::uint8_t& byte : bytes) {
    // Many extremes: what overflows, overflows there.
    const auto number = random();
    byte = number % 4 == 0 ? std::uint8_t{255} : static_cast<std::uint8_t>(number >> 8U);
  }
  return bytes;
}

Raster RasterOver(Bytes& bytes, std::int32_t width, std::int32_t height) {
  return {bytes.data(), 3 * std::ptrdiff_t{width}, width, height};
}

class AntiAlias : public testing::TestWithParam<const bmp::BlurKernels*> {
 protected:
  void SetUp() override {
    if (GetParam() == nullptr) {
      GTEST_SKIP() << "this processor has no such instructions";
    }
  }

  void Check(std::int32_t width, std::int32_t height) {
    const Bytes source = RandomBytes(Place(width, 0, height), static_cast<unsigned>(width ^ height));
    for (const std::int32_t level : {2, 3}) {
      Bytes blurred = source;  // ends where its memory ends, so that the sanitizers see what goes past it
      bmp::Blur(RasterOver(blurred, width, height), level, *GetParam());
      ASSERT_EQ(blurred, PlainBlur(source, width, height, level)) << width << " x " << height << ", level " << level;
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Kernels, AntiAlias, testing::Values(&bmp::kPortableBlurKernels, bmp::VectorBlurKernels()),
                         [](const auto& kernels) { return kernels.index == 0 ? "Portable" : "Vector"; });

TEST_P(AntiAlias, GivesWhatThePlainRuleGivesAtEverySize) {
  for (std::int32_t height = 0; height <= 65; ++height) {
    for (std::int32_t width = 0; width <= 65; ++width) {
      Check(width, height);
    }
  }
}

TEST_P(AntiAlias, GivesWhatThePlainRuleGivesOnLargePictures) {
  for (const auto& [width, height] : {std::pair{1366, 97}, {97, 1366}, {641, 480}, {2500, 3}, {1, 3000}}) {
    Check(width, height);
  }
}

TEST_P(AntiAlias, WritesNothingBetweenRowsAndTakesThemUpsideDown) {
  constexpr std::int32_t kWidth = 37;
  constexpr std::int32_t kHeight = 5;
  constexpr std::ptrdiff_t kRow = std::ptrdiff_t{3} * kWidth;
  constexpr std::ptrdiff_t kStride = kRow + 9;
  const Bytes picture = RandomBytes(Place(kWidth, 0, kHeight), 7);
  for (const std::int32_t level : {2, 3}) {
    const Bytes expected = PlainBlur(picture, kWidth, kHeight, level);
    for (const bool upsideDown : {false, true}) {
      Bytes memory(static_cast<std::size_t>(kStride * kHeight), 0xEE);
      Raster raster{memory.data(), kStride, kWidth, kHeight};
      if (upsideDown) {
        raster = {memory.data() + kStride * (kHeight - 1), -kStride, kWidth, kHeight};
      }
      for (std::int32_t y = 0; y < kHeight; ++y) {
        std::copy_n(picture.begin() + kRow * y, kRow, raster.Row(y));
      }
      bmp::Blur(raster, level, *GetParam());
      for (std::int32_t y = 0; y < kHeight; ++y) {
        EXPECT_TRUE(std::equal(raster.Row(y), raster.Row(y) + kRow, expected.begin() + kRow * y));
        EXPECT_EQ(Bytes(raster.Row(y) + kRow, raster.Row(y) + kStride), Bytes(9, 0xEE));
      }
    }
  }
}

TEST(AntiAliasBmp, TakesTheLevelsBelowTwoForTwoAndTheOthersForThree) {
  Bitmap source(5, 5);
  source.SetPixel(2, 2, 0xFFFFFF);
  for (const std::int32_t level : {INT32_MIN, 0, 2}) {
    Bitmap bitmap = source;
    AntiAliasBmp(bitmap, 0x123456, level);
    EXPECT_EQ(bitmap.Pixel(2, 2), 0x8D8D8DU) << level;  // 255 * 5 / 9
    EXPECT_EQ(bitmap.Pixel(2, 1), 0x1C1C1CU) << level;  // 255 / 9
    EXPECT_EQ(bitmap.Pixel(1, 1), 0U) << level;
  }
  for (const std::int32_t level : {3, 99, INT32_MAX}) {
    Bitmap bitmap = source;
    AntiAliasBmp(bitmap, 0, level);
    EXPECT_EQ(bitmap.Pixel(2, 2), 0x7F7F7FU) << level;  // 255 * 12 / 24
    EXPECT_EQ(bitmap.Pixel(1, 1), 0x0B0B0BU) << level;  // 255 / 22, as two samples lie outside
  }
}

TEST(AntiAliasBmp, LeavesAnotherFormatAsItIs) {
  Bitmap bitmap(2, 2, PixelFormat::Rgb32);
  bitmap.SetPixel(0, 0, 0xABCDEF);
  const Bitmap before = bitmap;
  ExpectError<Error>([&] { AntiAliasBmp(bitmap, 0, 2); }, "Nu pot face anti-alias decat pe bitmapuri cu pf24bit");
  EXPECT_EQ(bitmap, before);
}

void CheckFills(std::int32_t width, std::int32_t height, Colour from, Colour to) {
  const Bitmap across = GenerateHorizFountainFill(width, height, from, to);
  const Bitmap down = GenerateVertFountainFill(width, height, from, to);
  for (const Bitmap* const bitmap : {&across, &down}) {
    ASSERT_EQ(bitmap->Width(), width);
    ASSERT_EQ(bitmap->Height(), height);
    ASSERT_EQ(bitmap->Format(), PixelFormat::Rgb24);
  }
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      ASSERT_EQ(across.Pixel(x, y), PlainColour(from, to, x, width)) << x << ", " << y << " of " << width;
      ASSERT_EQ(down.Pixel(x, y), PlainColour(from, to, y, height)) << x << ", " << y << " of " << height;
    }
    for (std::ptrdiff_t at = std::ptrdiff_t{3} * width; at < across.Stride(); ++at) {
      ASSERT_EQ(across.ScanLine(y)[at] | down.ScanLine(y)[at], 0);
    }
  }
}

TEST(FountainFills, GiveWhatThePlainRuleGives) {
  std::mt19937 random(72);
  for (std::int32_t height = 0; height <= 65; ++height) {
    for (std::int32_t width = 0; width <= 65; ++width) {
      CheckFills(width, height, random() & 0xFFFFFFU, random() & 0xFFFFFFU);
    }
  }
  CheckFills(1920, 3, 0x000000, 0xFFFFFF);
  CheckFills(3, 1080, 0xFFFFFF, 0x00FF01);
  CheckFills(1, 4099, 0xFF8001, 0x0180FF);
}

TEST(FountainFills, WrapWhereThePlainRuleDoes) {
  constexpr std::int32_t kLongest = 0x7FFFFFFF / 255;  // the last length whose sums all fit 31 bits
  for (const std::int32_t length : {kLongest, kLongest + 1}) {
    const Bitmap bitmap = GenerateVertFountainFill(1, length, 0x00FF80FF, 0x00FFFF01);
    for (std::int32_t y = 0; y < length; y += y < length - 300 ? 99991 : 1) {
      ASSERT_EQ(bitmap.Pixel(0, std::min(y, length - 1)),
                PlainColour(0x00FF80FF, 0x00FFFF01, std::min(y, length - 1), length));
    }
  }
}

TEST(FountainFills, RefuseNegativeSizes) {
  ExpectError<Error>([] { static_cast<void>(GenerateHorizFountainFill(-1, 5, 0, 0)); },
                     "Bitmap: dimensiune imposibila: -1 x 5");
  ExpectError<Error>([] { static_cast<void>(GenerateVertFountainFill(5, -2, 0, 0)); },
                     "Bitmap: dimensiune imposibila: 5 x -2");
}

TEST(FillPixels, WritesEveryCountFromEveryPlace) {
  const pixels::Pixel pixel = {1, 2, 3, 4};
  for (const pixels::Repeat repeat : {&pixels::RepeatPortable, pixels::VectorRepeat()}) {
    for (const std::size_t size : {3U, 4U}) {
      for (std::size_t offset = 0; repeat != nullptr && offset < 32; ++offset) {
        for (std::size_t bytes = 33 / size * size; bytes < 400; bytes += size) {
          Bytes memory(offset + bytes + 40);
          repeat(memory.data() + offset, bytes, pixel, pixels::OrderOf(size));
          for (std::size_t i = 0; i < memory.size(); ++i) {
            const bool written = i >= offset && i < offset + bytes;
            ASSERT_EQ(memory[i], written ? 1 + (i - offset) % size : 0) << bytes << " bytes at " << offset;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace kiv
