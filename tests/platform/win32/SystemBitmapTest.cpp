#include <gtest/gtest.h>
#include <windows.h>

#include "kivtools/Bitmap.h"

namespace kiv {
namespace {

TEST(SystemBitmap, IsMadeAndTakenOver) {
  for (const PixelFormat format : {PixelFormat::Rgb24, PixelFormat::Rgb32}) {
    Bitmap bitmap(5, 3, format);
    for (std::int32_t y = 0; y < 3; ++y) {
      for (std::int32_t x = 0; x < 5; ++x) {
        bitmap.SetPixel(x, y, static_cast<Colour>(0x010203 * (x + 1) + 0x300010 * y));
      }
    }
    const auto handle = reinterpret_cast<HBITMAP>(ToSystemBitmap(bitmap));
    EXPECT_EQ(FromSystemBitmap(reinterpret_cast<Handle>(handle)), bitmap);

    // What the system itself sees in it.
    const HDC context = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(context, handle);
    EXPECT_EQ(GetPixel(context, 4, 0), bitmap.Pixel(4, 0));
    EXPECT_EQ(GetPixel(context, 0, 2), bitmap.Pixel(0, 2));
    SelectObject(context, before);
    DeleteDC(context);
    DeleteObject(handle);
    EXPECT_THROW(static_cast<void>(FromSystemBitmap(reinterpret_cast<Handle>(handle))), OsError);
  }
}

TEST(SystemBitmap, IsNotMadeOfNothing) {
  EXPECT_THROW(static_cast<void>(ToSystemBitmap(Bitmap())), OsError);
  EXPECT_THROW(static_cast<void>(FromSystemBitmap(0)), OsError);
}

}  // namespace
}  // namespace kiv
