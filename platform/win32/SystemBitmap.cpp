#include <windows.h>

#include <cstring>

#include "kivtools/Bitmap.h"
#include "platform/SystemCalls.h"

namespace kiv {
namespace {

/// The drawing calls often fail without saying why.
[[noreturn]] void ThrowLastFailure(TextView operation) {
  const DWORD code = GetLastError();
  throw platform::SystemError(operation, static_cast<std::int32_t>(code != 0 ? code : DWORD{ERROR_INVALID_PARAMETER}));
}

/// The gate's answer ahead of what makes a drawing object.
void RequireDrawing(TextView operation) {
  platform::Admitted(platform::SystemCall::MakeDrawing).OrThrow(operation);
  SetLastError(0);
}

/// Rows as a Bitmap has them: from the top down, filled up to whole words.
BITMAPINFO InfoOf(const Bitmap& bitmap) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = bitmap.Width();
  info.bmiHeader.biHeight = -bitmap.Height();
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = bitmap.Format() == PixelFormat::Rgb24 ? 24 : 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

class ScreenContext {
 public:
  explicit ScreenContext(TextView operation) : context_(GetDC(nullptr)) {
    if (context_ == nullptr) {
      ThrowLastFailure(operation);
    }
  }
  ~ScreenContext() { ReleaseDC(nullptr, context_); }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;

  [[nodiscard]] HDC Get() const { return context_; }

 private:
  HDC context_;
};

}  // namespace

Handle ToSystemBitmap(const Bitmap& bitmap) {
  const BITMAPINFO info = InfoOf(bitmap);
  void* pixels = nullptr;
  RequireDrawing("ToSystemBitmap");
  const HBITMAP made = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (made == nullptr) {
    ThrowLastFailure("ToSystemBitmap");
  }
  std::memcpy(pixels, bitmap.ScanLine(0),
              static_cast<std::size_t>(bitmap.Stride()) * static_cast<std::size_t>(bitmap.Height()));
  return reinterpret_cast<Handle>(made);
}

Bitmap FromSystemBitmap(Handle handle) {
  const auto source = reinterpret_cast<HBITMAP>(handle);
  BITMAP sizes{};
  SetLastError(0);
  if (GetObjectW(source, sizeof sizes, &sizes) != sizeof sizes) {
    ThrowLastFailure("FromSystemBitmap");
  }
  Bitmap bitmap(sizes.bmWidth, sizes.bmHeight, sizes.bmBitsPixel == 32 ? PixelFormat::Rgb32 : PixelFormat::Rgb24);
  BITMAPINFO info = InfoOf(bitmap);
  RequireDrawing("FromSystemBitmap");
  const ScreenContext screen("FromSystemBitmap");
  if (GetDIBits(screen.Get(), source, 0, static_cast<UINT>(bitmap.Height()), bitmap.ScanLine(0), &info,
                DIB_RGB_COLORS) != bitmap.Height()) {
    ThrowLastFailure("FromSystemBitmap");
  }
  return bitmap;
}

}  // namespace kiv
