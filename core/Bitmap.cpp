#include "kivtools/Bitmap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "core/BitmapMaker.h"
#include "core/PixelRows.h"

namespace kiv {
namespace {

std::uint8_t* Allocated(std::size_t bytes, bool cleared) {
  if (bytes == 0) {
    return nullptr;
  }
  // The system hands out large pieces already cleared, and calloc knows.
  void* const memory = cleared ? std::calloc(bytes, 1) : std::malloc(bytes);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return static_cast<std::uint8_t*>(memory);
}

[[noreturn]] void RefuseSize(std::int32_t width, std::int32_t height) {
  throw Error("Bitmap: dimensiune imposibila: " + std::to_string(width) + " x " + std::to_string(height));
}

}  // namespace

void Bitmap::Freeing::operator()(std::uint8_t* pixels) const noexcept {
  std::free(pixels);
}

Bitmap BitmapMaker::WithoutMemory(std::int32_t width, std::int32_t height, PixelFormat format) {
  constexpr std::uint64_t kMostBytes = std::numeric_limits<std::ptrdiff_t>::max();
  if (width < 0 || height < 0) {
    RefuseSize(width, height);
  }
  // Without rows there is nothing from one to the next, however wide.
  const std::uint64_t stride = height == 0 ? 0 : StrideOf(static_cast<std::uint64_t>(width), format);
  if (stride > kMostBytes || (height > 0 && stride > kMostBytes / static_cast<std::uint64_t>(height))) {
    RefuseSize(width, height);
  }
  Bitmap bitmap;
  bitmap.width_ = width;
  bitmap.height_ = height;
  bitmap.format_ = format;
  bitmap.stride_ = static_cast<std::ptrdiff_t>(stride);
  return bitmap;
}

Bitmap BitmapMaker::Unwritten(std::int32_t width, std::int32_t height, PixelFormat format) {
  Bitmap bitmap = WithoutMemory(width, height, format);
  bitmap.pixels_.reset(Allocated(bitmap.Bytes(), false));
  return bitmap;
}

Bitmap::Bitmap(std::int32_t width, std::int32_t height, PixelFormat format)
    : Bitmap(BitmapMaker::WithoutMemory(width, height, format)) {
  pixels_.reset(Allocated(Bytes(), true));
}

Bitmap::Bitmap(const Bitmap& other)
    : width_(other.width_),
      height_(other.height_),
      format_(other.format_),
      stride_(other.stride_),
      pixels_(Allocated(other.pixels_ == nullptr ? 0 : other.Bytes(), false)) {
  if (pixels_ != nullptr) {
    std::memcpy(pixels_.get(), other.pixels_.get(), Bytes());
  }
}

Bitmap::Bitmap(Bitmap&& other) noexcept
    : width_(std::exchange(other.width_, 0)),
      height_(std::exchange(other.height_, 0)),
      format_(std::exchange(other.format_, PixelFormat::Rgb24)),
      stride_(std::exchange(other.stride_, 0)),
      pixels_(std::move(other.pixels_)) {}

Bitmap& Bitmap::operator=(const Bitmap& other) {
  if (this != &other) {
    *this = Bitmap(other);
  }
  return *this;
}

Bitmap& Bitmap::operator=(Bitmap&& other) noexcept {
  Bitmap taken(std::move(other));  // so that assigning a bitmap to itself keeps it
  std::swap(width_, taken.width_);
  std::swap(height_, taken.height_);
  std::swap(format_, taken.format_);
  std::swap(stride_, taken.stride_);
  std::swap(pixels_, taken.pixels_);
  return *this;
}

Bitmap::~Bitmap() = default;

void Bitmap::SetSize(std::int32_t width, std::int32_t height) {
  if (width == width_ && height == height_) {
    return;
  }
  Bitmap resized(width, height, format_);
  const std::size_t kept = static_cast<std::size_t>(std::min(width, width_)) * PixelBytes();
  for (std::int32_t y = 0; kept > 0 && y < std::min(height, height_); ++y) {
    std::memcpy(resized.Row(y), Row(y), kept);
  }
  *this = std::move(resized);
}

void Bitmap::SetFormat(PixelFormat format) {
  if (format == format_) {
    return;
  }
  Bitmap converted(width_, height_, format);
  const std::size_t from = PixelBytes();
  const std::size_t to = converted.PixelBytes();
  for (std::int32_t y = 0; width_ > 0 && y < height_; ++y) {
    const std::uint8_t* in = Row(y);
    std::uint8_t* out = converted.Row(y);
    for (std::int32_t x = 0; x < width_; ++x, in += from, out += to) {
      std::memcpy(out, in, 3);
    }
  }
  *this = std::move(converted);
}

std::uint8_t* Bitmap::ScanLine(std::int32_t y) {
  return const_cast<std::uint8_t*>(std::as_const(*this).ScanLine(y));
}

const std::uint8_t* Bitmap::ScanLine(std::int32_t y) const {
  if (y < 0 || y >= height_) {
    throw Error("Bitmap::ScanLine: randul " + std::to_string(y) + " nu exista");
  }
  return Row(y);
}

Colour Bitmap::Pixel(std::int32_t x, std::int32_t y) const {
  if (x < 0 || x >= width_ || y < 0 || y >= height_) {
    throw Error("Bitmap::Pixel: punctul " + std::to_string(x) + ", " + std::to_string(y) + " nu exista");
  }
  const std::uint8_t* const pixel = Row(y) + static_cast<std::size_t>(x) * PixelBytes();
  return std::uint32_t{pixel[0]} << 16U | std::uint32_t{pixel[1]} << 8U | pixel[2];
}

void Bitmap::SetPixel(std::int32_t x, std::int32_t y, Colour colour) noexcept {
  if (x >= 0 && x < width_ && y >= 0 && y < height_) {
    FillPixels(Row(y) + static_cast<std::size_t>(x) * PixelBytes(), 1, PixelBytes(), colour);
  }
}

void Bitmap::FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
                      Colour colour) noexcept {
  left = std::max(left, 0);
  top = std::max(top, 0);
  right = std::min(right, width_);
  bottom = std::min(bottom, height_);
  if (left >= right || top >= bottom) {
    return;
  }
  const std::size_t start = static_cast<std::size_t>(left) * PixelBytes();
  const auto pixels = static_cast<std::size_t>(right - left);
  std::uint8_t* const first = Row(top) + start;
  FillPixels(first, pixels, PixelBytes(), colour);
  for (std::int32_t y = top + 1; y < bottom; ++y) {
    std::memcpy(Row(y) + start, first, pixels * PixelBytes());
  }
}

bool operator==(const Bitmap& a, const Bitmap& b) noexcept {
  if (a.width_ != b.width_ || a.height_ != b.height_ || a.format_ != b.format_) {
    return false;
  }
  // A file may tell of two thousand million rows of nothing.
  const std::int32_t rows = a.width_ == 0 ? 0 : a.height_;
  for (std::int32_t y = 0; y < rows; ++y) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(a.width_) * a.PixelBytes(); at += a.PixelBytes()) {
      if (std::memcmp(a.Row(y) + at, b.Row(y) + at, 3) != 0) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace kiv
