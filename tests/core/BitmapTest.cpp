#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "Expect.h"
#include "kivtools/Bitmap.h"

namespace kiv {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

/// Every pixel of another colour.
Bitmap Sample(std::int32_t width, std::int32_t height, PixelFormat format = PixelFormat::Rgb24) {
  Bitmap bitmap(width, height, format);
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      bitmap.SetPixel(x, y, static_cast<Colour>(0x010203 + 0x0A0000 * x + 0x001100 * y + 7 * x));
    }
  }
  return bitmap;
}

TEST(Bitmap, IsBlackAtFirstInRowsOfWholeWords) {
  struct {
    std::int32_t width;
    PixelFormat format;
    std::ptrdiff_t stride;
  } const cases[] = {{0, PixelFormat::Rgb24, 0},  {1, PixelFormat::Rgb24, 4},  {2, PixelFormat::Rgb24, 8},
                     {4, PixelFormat::Rgb24, 12}, {5, PixelFormat::Rgb24, 16}, {5, PixelFormat::Rgb32, 20}};
  for (const auto& each : cases) {
    const Bitmap bitmap(each.width, 3, each.format);
    EXPECT_EQ(bitmap.Stride(), each.stride);
    for (std::int32_t y = 0; y < 3 && each.width > 0; ++y) {
      EXPECT_EQ(std::count(bitmap.ScanLine(y), bitmap.ScanLine(y) + each.stride, 0), each.stride);
    }
  }
}

TEST(Bitmap, KeepsBlueGreenRed) {
  Bitmap bitmap(2, 2);
  bitmap.SetPixel(1, 1, 0x00332211);
  const std::uint8_t* const pixel = bitmap.ScanLine(1) + 3;
  EXPECT_EQ(pixel[0], 0x33);
  EXPECT_EQ(pixel[1], 0x22);
  EXPECT_EQ(pixel[2], 0x11);
  EXPECT_EQ(bitmap.Pixel(1, 1), 0x332211U);
  EXPECT_EQ(bitmap.Pixel(0, 1), 0U);
}

TEST(Bitmap, RefusesImpossibleSizes) {
  for (const auto& [width, height] : {std::pair{-1, 1}, {1, -1}, {kMost, kMost}}) {
    const Text size = std::to_string(width) + " x " + std::to_string(height);
    ExpectError<Error>([w = width, h = height] { Bitmap(w, h, PixelFormat::Rgb32); },
                       "Bitmap: dimensiune imposibila: " + size);
  }
  Bitmap bitmap = Sample(3, 2);
  EXPECT_THROW(bitmap.SetSize(2, -5), Error);
  EXPECT_EQ(bitmap, Sample(3, 2));
  EXPECT_EQ(Bitmap(kMost, 0).Width(), kMost);
  EXPECT_EQ(Bitmap(0, kMost).Height(), kMost);
}

TEST(Bitmap, NamesRowsAndPixelsThatItDoesNotHave) {
  const Bitmap bitmap(2, 3);
  ExpectError<Error>([&] { static_cast<void>(bitmap.ScanLine(3)); }, "Bitmap::ScanLine: randul 3 nu exista");
  ExpectError<Error>([&] { static_cast<void>(bitmap.ScanLine(-1)); }, "Bitmap::ScanLine: randul -1 nu exista");
  for (const auto& [x, y] : {std::pair{2, 0}, {-1, 0}, {0, 3}, {0, -1}}) {
    ExpectError<Error>([&, x = x, y = y] { static_cast<void>(bitmap.Pixel(x, y)); },
                       "Bitmap::Pixel: punctul " + std::to_string(x) + ", " + std::to_string(y) + " nu exista");
  }
}

TEST(Bitmap, DrawsWithinItselfOnly) {
  for (const PixelFormat format : {PixelFormat::Rgb24, PixelFormat::Rgb32}) {
    struct {
      std::int32_t left, top, right, bottom;
    } const cases[] = {{1, 1, 3, 2},         {-5, -5, 100, 100},    {0, 0, 0, 9}, {3, 1, 1, 2},
                       {kMost, 0, kMost, 1}, {-kMost, 0, kMost, 1}, {4, 2, 9, 9}, {0, 3, 5, 4}};
    for (const auto& each : cases) {
      Bitmap bitmap(5, 3, format);
      bitmap.FillRect(each.left, each.top, each.right, each.bottom, 0xFF332211);
      for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t x = 0; x < 5; ++x) {
          const bool inside = x >= each.left && x < each.right && y >= each.top && y < each.bottom;
          EXPECT_EQ(bitmap.Pixel(x, y), inside ? 0x332211U : 0U) << x << ", " << y;
        }
      }
    }
    Bitmap bitmap(2, 2, format);
    for (const auto& [x, y] : {std::pair{-1, 0}, {2, 0}, {0, -1}, {0, 2}}) {
      bitmap.SetPixel(x, y, 0xFFFFFF);
    }
    EXPECT_EQ(bitmap, Bitmap(2, 2, format));
  }
}

TEST(Bitmap, CopiesAndMovesItsContent) {
  const Bitmap sample = Sample(5, 4);
  Bitmap copy = sample;
  EXPECT_EQ(copy, sample);
  copy.SetPixel(0, 0, 0xFFFFFF);
  EXPECT_EQ(sample, Sample(5, 4));
  copy = sample;
  Bitmap& same = copy;
  copy = same;
  copy = std::move(same);
  EXPECT_EQ(copy, sample);
  Bitmap moved = std::move(copy);
  EXPECT_EQ(moved, sample);
  EXPECT_EQ(copy, Bitmap());  // NOLINT(bugprone-use-after-move): what is left is told
  copy = std::move(moved);
  EXPECT_EQ(copy, sample);
  EXPECT_EQ(moved, Bitmap());  // NOLINT(bugprone-use-after-move): as above
}

TEST(Bitmap, ComparesSizeFormatAndColours) {
  const Bitmap sample = Sample(3, 2);
  EXPECT_NE(sample, Sample(2, 2));
  EXPECT_NE(sample, Sample(3, 1));
  EXPECT_NE(sample, Sample(3, 2, PixelFormat::Rgb32));
  Bitmap other = Sample(3, 2);
  other.ScanLine(1)[9] = 1;  // behind the row's last pixel
  EXPECT_EQ(sample, other);
  other.ScanLine(1)[8] ^= 1;
  EXPECT_NE(sample, other);
}

TEST(Bitmap, KeepsWhatLiesWithinAnotherSizeOrFormat) {
  for (const auto& [width, height] : {std::pair{7, 5}, {2, 2}, {7, 1}, {1, 7}, {0, 3}, {4, 3}}) {
    Bitmap bitmap = Sample(4, 3);
    bitmap.SetSize(width, height);
    Bitmap expected(width, height);
    for (std::int32_t y = 0; y < std::min(height, 3); ++y) {
      for (std::int32_t x = 0; x < std::min(width, 4); ++x) {
        expected.SetPixel(x, y, Sample(4, 3).Pixel(x, y));
      }
    }
    EXPECT_EQ(bitmap, expected);
  }
  Bitmap bitmap = Sample(5, 3);
  bitmap.SetFormat(PixelFormat::Rgb32);
  EXPECT_EQ(bitmap, Sample(5, 3, PixelFormat::Rgb32));
  EXPECT_EQ(bitmap.Stride(), 20);
  bitmap.SetFormat(PixelFormat::Rgb24);
  EXPECT_EQ(bitmap, Sample(5, 3));
}

}  // namespace
}  // namespace kiv
