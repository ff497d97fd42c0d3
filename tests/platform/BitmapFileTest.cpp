#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "Expect.h"
#include "FailingCalls.h"
#include "TestFolder.h"
#include "core/BitmapFile.h"
#include "kivtools/Bitmap.h"
#include "platform/Paths.h"

namespace kiv {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bitmap Sample(std::int32_t width, std::int32_t height, PixelFormat format = PixelFormat::Rgb24) {
  Bitmap bitmap(width, height, format);
  std::mt19937 random(static_cast<unsigned>(width + 99 * height));
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      bitmap.SetPixel(x, y, random() & 0xFFFFFFU);
    }
  }
  return bitmap;
}

Bytes FileOf(const Bitmap& bitmap) {
  const bool empty = bitmap.Width() == 0 || bitmap.Height() == 0;
  Bytes file;
  bmpfile::Write(
      {empty ? nullptr : bitmap.ScanLine(0), bitmap.Stride(), bitmap.Width(), bitmap.Height(), bitmap.Format()},
      "Write", [&](std::span<const std::uint8_t> piece) { file.insert(file.end(), piece.begin(), piece.end()); });
  return file;
}

Bitmap PictureOf(const Bytes& file) {
  return bmpfile::Read(file.size(), "Read", [&](std::uint64_t offset, std::span<std::uint8_t> buffer) {
    const std::size_t start = static_cast<std::size_t>(std::min<std::uint64_t>(offset, file.size()));
    const std::size_t count = std::min(buffer.size(), file.size() - start);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(start), count, buffer.begin());
    return count;
  });
}

void Put(Bytes& bytes, std::size_t at, std::uint32_t number, std::size_t size = 4) {
  bytes.resize(std::max(bytes.size(), at + size));
  for (std::size_t i = 0; i < size; ++i) {
    bytes[at + i] = static_cast<std::uint8_t>(number >> 8 * i);
  }
}

/// A file with a header of 40 bytes and what comes after it.
Bytes Made(std::int32_t width, std::int32_t height, std::uint32_t bits, std::uint32_t compression,
           std::uint32_t colours, const Bytes& palette, const Bytes& pixels) {
  Bytes file = {'B', 'M'};
  Put(file, 10, static_cast<std::uint32_t>(54 + palette.size()));
  Put(file, 14, 40);
  Put(file, 18, static_cast<std::uint32_t>(width));
  Put(file, 22, static_cast<std::uint32_t>(height));
  Put(file, 26, 1, 2);
  Put(file, 28, bits, 2);
  Put(file, 30, compression);
  Put(file, 46, colours);
  Put(file, 50, 0);
  file.insert(file.end(), palette.begin(), palette.end());
  file.insert(file.end(), pixels.begin(), pixels.end());
  return file;
}

std::vector<Colour> Pixels(const Bitmap& bitmap) {
  std::vector<Colour> pixels;
  for (std::int32_t y = 0; y < bitmap.Height(); ++y) {
    for (std::int32_t x = 0; x < bitmap.Width(); ++x) {
      pixels.push_back(bitmap.Pixel(x, y));
    }
  }
  return pixels;
}

TEST(BitmapFile, IsWrittenByteForByte) {
  Bitmap bitmap(1, 2);
  bitmap.SetPixel(0, 0, 0x030201);
  bitmap.SetPixel(0, 1, 0x060504);
  const Bytes expected = {'B',  'M',  62, 0, 0, 0, 0, 0,  0, 0, 54, 0, 0, 0, 40, 0, 0, 0,    1,    0, 0,
                          0,    2,    0,  0, 0, 1, 0, 24, 0, 0, 0,  0, 0, 8, 0,  0, 0, 0xC4, 0x0E, 0, 0,
                          0xC4, 0x0E, 0,  0, 0, 0, 0, 0,  0, 0, 0,  0, 6, 5, 4,  0, 3, 2,    1,    0};
  EXPECT_EQ(FileOf(bitmap), expected);
}

TEST(BitmapFile, IsReadAsItWasWritten) {
  for (const PixelFormat format : {PixelFormat::Rgb24, PixelFormat::Rgb32}) {
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {2, 3}, {3, 2}, {5, 7}, {641, 300}, {0, 5}, {5, 0}}) {
      const Bitmap bitmap = Sample(width, height, format);
      EXPECT_EQ(PictureOf(FileOf(bitmap)), bitmap) << width << " x " << height;
    }
  }
}

TEST(BitmapFile, OfOtherKindsIsReadToo) {
  const Bytes palette = {0x01, 0x02, 0x03, 0, 0x04, 0x05, 0x06, 0, 0x07, 0x08, 0x09, 0};
  struct {
    const char* kind;
    Bytes file;
    std::vector<Colour> pixels;
  } const cases[] = {
      {"1 bit",
       Made(9, 1, 1, 0, 2, palette, {0x40, 0x80, 0, 0}),
       {0x010203, 0x040506, 0x010203, 0x010203, 0x010203, 0x010203, 0x010203, 0x010203, 0x040506}},
      {"4 bits, a colour that is missing",
       Made(3, 1, 4, 0, 3, palette, {0x12, 0x30, 0, 0}),
       {0x040506, 0x070809, 0x000000}},
      {"8 bits, two rows", Made(1, 2, 8, 0, 3, palette, {2, 0, 0, 0, 1, 0, 0, 0}), {0x040506, 0x070809}},
      {"8 bits, the last row not filled up", Made(1, 2, 8, 0, 3, palette, {2, 0, 0, 0, 1}), {0x040506, 0x070809}},
      {"8 bits, from the top down", Made(1, -2, 8, 0, 3, palette, {2, 0, 0, 0, 1, 0, 0, 0}), {0x070809, 0x040506}},
      {"8 bits, palette unsaid and cut off by the end", Made(1, 1, 8, 0, 0, {}, {0, 0, 0, 0}), {0x000000}},
      {"16 bits", Made(2, 1, 16, 0, 0, {}, {0x1F, 0x7C, 0x21, 0x04}), {0xFF00FF, 0x080808}},
      {"16 bits with masks of five",
       Made(1, 1, 16, 3, 0, {0, 0x7C, 0, 0, 0xE0, 3, 0, 0, 0x1F, 0, 0, 0}, {0xE0, 0x03, 0, 0}),
       {0x00FF00}},
      {"16 bits with six for green",
       Made(2, 1, 16, 3, 0, {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0}, {0x20, 0x00, 0x10, 0xF8}),
       {0x000400, 0x8400FF}},
      {"32 bits with masks",
       Made(1, 1, 32, 3, 0, {0, 0, 0xFF, 0, 0, 0xFF, 0, 0, 0xFF, 0, 0, 0}, {3, 2, 1, 0x80}),
       {0x030201}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.kind);
    EXPECT_EQ(Pixels(PictureOf(each.file)), each.pixels);
  }
  Bytes old = {'B', 'M'};  // the first form of all: sizes of 16 bits, colours of three bytes
  Put(old, 10, 32);
  Put(old, 14, 12);
  Put(old, 18, 2, 2);
  Put(old, 20, 1, 2);
  Put(old, 22, 1, 2);
  Put(old, 24, 1, 2);
  for (const std::uint8_t byte : Bytes{1, 2, 3, 4, 5, 6, 0x40, 0, 0, 0}) {
    old.push_back(byte);
  }
  EXPECT_EQ(Pixels(PictureOf(old)), (std::vector<Colour>{0x010203, 0x040506}));
}

TEST(BitmapFile, CutShortAnywhereIsRefused) {
  const Bytes file = FileOf(Sample(3, 2));
  for (std::size_t length = 0; length < file.size(); ++length) {
    const bool onlyFill = length + 3 >= file.size();  // three bytes fill the last row up
    const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
    if (onlyFill) {
      EXPECT_EQ(PictureOf(cut), Sample(3, 2));
    } else {
      ExpectError<Error>([&] { PictureOf(cut); },
                         length < 18 ? "Read: nu este un fisier BMP" : "Read: fisierul BMP este trunchiat");
    }
  }
}

TEST(BitmapFile, OfNoKnownKindIsRefused) {
  const Bytes pixels(64);
  const Bytes strange = {0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF, 0};  // red and blue the other way round
  const auto changed = [](std::size_t at, std::uint32_t number) {
    Bytes file = FileOf(Sample(3, 2));
    Put(file, at, number);
    return file;
  };
  struct {
    Bytes file;
    const char* message;
  } const cases[] = {
      {Made(1, 1, 2, 0, 0, {}, pixels), "Read: fel de BMP necunoscut: 2 biti, compresia 0"},
      {Made(1, 1, 0, 0, 0, {}, pixels), "Read: fel de BMP necunoscut: 0 biti, compresia 0"},
      {Made(1, 1, 8, 1, 0, {}, pixels), "Read: fel de BMP necunoscut: 8 biti, compresia 1"},
      {Made(1, 1, 24, 3, 0, strange, pixels), "Read: fel de BMP necunoscut: 24 biti, compresia 3"},
      {Made(1, 1, 32, 3, 0, strange, pixels), "Read: fel de BMP necunoscut: 32 biti, compresia 3"},
      {Made(1, 1, 16, 3, 0, strange, pixels), "Read: fel de BMP necunoscut: 16 biti, compresia 3"},
      {Made(-1, 1, 24, 0, 0, {}, pixels), "Read: dimensiune imposibila"},
      {Made(1, INT32_MIN, 24, 0, 0, {}, pixels), "Read: dimensiune imposibila"},
      {Made(INT32_MAX, INT32_MAX, 32, 0, 0, {}, pixels), "Read: fisierul BMP este trunchiat"},
      {Made(1, INT32_MAX, 1, 0, 0, {}, pixels), "Read: fisierul BMP este trunchiat"},
      {changed(10, 0xFFFFFFFF), "Read: fisierul BMP este trunchiat"},
      {changed(14, 39), "Read: nu este un fisier BMP"},
      {changed(14, 0xFFFFFFFF), "Read: nu este un fisier BMP"},
      {changed(0, 'B' | 'N' << 8), "Read: nu este un fisier BMP"},
  };
  for (const auto& each : cases) {
    ExpectError<Error>([&] { PictureOf(each.file); }, each.message);
  }
}

TEST(BitmapFile, OfFourGigabytesIsNotWritten) {
  const bmpfile::Picture picture{nullptr, 0, 40000, 40000, PixelFormat::Rgb24};
  ExpectError<Error>([&] { bmpfile::Write(picture, "Write", [](auto) { FAIL(); }); },
                     "Write: un fisier BMP nu poate avea 4 GiB");
}

TEST(BitmapFile, IsSavedAndLoadedUnderAnyName) {
  const TestFolder folder;
  const Text path = platform::TextFromPath(folder.Path()) + "/fi\xBA\xE3.bmp";
  const Bitmap bitmap = Sample(201, 120);
  Sample(3, 3).SaveToFile(path);
  bitmap.SaveToFile(path);
  Bitmap loaded = Sample(2, 2, PixelFormat::Rgb32);
  loaded.LoadFromFile(path);
  EXPECT_EQ(loaded, bitmap);
}

TEST(BitmapFile, KeepsThePictureAndTheFileAsTheyWereWhateverFails) {
  const TestFolder folder;
  const std::filesystem::path file = folder / "a.bmp";
  const Text path = platform::TextFromPath(file);
  const Bitmap before = Sample(5, 5);
  const Bitmap after = Sample(200, 300);
  struct {
    const char* operation;
    std::function<void(Bitmap&)> run;
  } const cases[] = {
      {"Bitmap::SaveToFile", [&](Bitmap&) { after.SaveToFile(path); }},
      {"Bitmap::LoadFromFile", [&](Bitmap& bitmap) { bitmap.LoadFromFile(path); }},
  };
  for (const auto& each : cases) {
    bool failed = true;
    for (std::size_t call = 0; failed; ++call) {
      before.SaveToFile(path);
      Bitmap bitmap = Sample(2, 2);
      const FailingCalls failing(call);
      try {
        each.run(bitmap);
        failed = failing.Failed();
        EXPECT_TRUE(failed ? failing.Seen().back() == platform::SystemCall::Close || bitmap == Sample(2, 2)
                           : bitmap == before || bitmap == Sample(2, 2));
      } catch (const OsError& error) {
        EXPECT_EQ(error.Code(), 5);
        EXPECT_EQ(Text(error.what()).find(each.operation + Text(": ") + path), 0U) << error.what();
        EXPECT_EQ(bitmap, Sample(2, 2));
      }
    }
  }
  ExpectError<Error>(
      [&] {
        WriteWhole(file, "nu este");
        Bitmap().LoadFromFile(path);
      },
      "Bitmap::LoadFromFile: " + path + ": nu este un fisier BMP");
  EXPECT_THROW(Bitmap().LoadFromFile(path + "x"), OsError);
  EXPECT_THROW(Bitmap().LoadFromFile(platform::TextFromPath(folder.Path())), OsError);
}

}  // namespace
}  // namespace kiv
