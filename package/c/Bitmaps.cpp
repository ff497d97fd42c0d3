#include "kivtools/c/Bitmaps.h"

#include <cstring>

#include "core/Raster.h"
#include "kivtools/WinUtil/Colours.h"
#include "package/c/Abi.h"
#include "platform/BitmapFile.h"
#include "platform/Paths.h"
#include "tools/BmpRoutines/Rasters.h"
#include "tools/ResolvedColour.h"

using namespace kiv::c;

struct KivBitmap {
  kiv::Bitmap bitmap;
};

namespace {

/// The host's picture. Rows that lie over each other are refused: what is written would not be what was asked for.
kiv::Raster RasterArgument(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height) {
  const kiv::Raster raster{pixels, stride, width, height};
  if (width < 0 || height < 0) {
    throw kiv::Error("dimensiune imposibila: " + std::to_string(width) + " x " + std::to_string(height));
  }
  if (width == 0 || height == 0) {
    return raster;
  }
  KIV_REQUIRED(pixels);
  const std::uint64_t between =
      stride < 0 ? 0 - static_cast<std::uint64_t>(stride) : static_cast<std::uint64_t>(stride);
  if (height > 1 && between < std::uint64_t{3} * static_cast<std::uint32_t>(width)) {
    throw kiv::Error("stride prea mic: " + std::to_string(stride) + " pentru latimea " + std::to_string(width));
  }
  return raster;
}

void CopyRows(const kiv::Raster& from, const kiv::Raster& to) {
  for (std::int32_t y = 0; y < from.height; ++y) {
    std::memcpy(to.Row(y), from.Row(y), from.RowBytes());
  }
}

}  // namespace

extern "C" {

KivStatus KivGenerateHorizFountainFill(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, uint32_t from,
                                       uint32_t to) {
  return Run([=] {
    const kiv::Raster raster = RasterArgument(pixels, stride, width, height);
    kiv::bmp::FillFromLeft(raster, kiv::ResolvedColour(from), kiv::ResolvedColour(to));
  });
}

KivStatus KivGenerateVertFountainFill(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, uint32_t from,
                                      uint32_t to) {
  return Run([=] {
    const kiv::Raster raster = RasterArgument(pixels, stride, width, height);
    kiv::bmp::FillFromTop(raster, kiv::ResolvedColour(from), kiv::ResolvedColour(to));
  });
}

KivStatus KivGenerateGradientFillBitmap(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, uint32_t from,
                                        uint32_t to) {
  return Run([=] {
    const kiv::Raster raster = RasterArgument(pixels, stride, width, height);
    kiv::Bitmap bitmap(width, height);
    if (width > 0) {
      CopyRows(raster, kiv::RasterOf(bitmap));  // what the gradient leaves out stays
      kiv::GenerateGradientFillBitmap(from, to, bitmap);
      CopyRows(kiv::RasterOf(bitmap), raster);
    }
  });
}

KivStatus KivAntiAliasBmp(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, int32_t level) {
  return Run([=] { kiv::bmp::Blur(RasterArgument(pixels, stride, width, height), level); });
}

KivStatus KivSaveBitmap(const uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, const char* path,
                        size_t pathLength) {
  return Run([=] {
    RasterArgument(const_cast<uint8_t*>(pixels), stride, width, height);  // only looked at
    const kiv::bmpfile::Picture picture{pixels, stride, width, height, kiv::PixelFormat::Rgb24};
    kiv::platform::SaveBitmap(picture, kiv::platform::PathFromText(KIV_TEXT(path, pathLength)), "KivSaveBitmap");
  });
}

KivStatus KivOpenBitmap(const char* path, size_t pathLength, KivBitmap** bitmap) {
  return Run([=] {
    KivBitmap*& opened = KIV_REQUIRED(bitmap);
    kiv::Bitmap loaded =
        kiv::platform::LoadBitmap(kiv::platform::PathFromText(KIV_TEXT(path, pathLength)), "KivOpenBitmap");
    loaded.SetFormat(kiv::PixelFormat::Rgb24);
    opened = new KivBitmap{std::move(loaded)};
  });
}

KivStatus KivBitmapPixels(KivBitmap* bitmap, uint8_t** pixels, ptrdiff_t* stride, int32_t* width, int32_t* height) {
  return Run([=] {
    const kiv::Raster raster = kiv::RasterOf(KIV_REQUIRED(bitmap).bitmap);
    uint8_t*& itsPixels = KIV_REQUIRED(pixels);
    ptrdiff_t& itsStride = KIV_REQUIRED(stride);
    int32_t& itsWidth = KIV_REQUIRED(width);
    int32_t& itsHeight = KIV_REQUIRED(height);
    itsPixels = raster.pixels;
    itsStride = raster.stride;
    itsWidth = raster.width;
    itsHeight = raster.height;
  });
}

void KivCloseBitmap(KivBitmap* bitmap) {
  delete bitmap;
}

}  // extern "C"
