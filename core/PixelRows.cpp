#include "core/PixelRows.h"

#include <cstring>

namespace kiv {
namespace pixels {
namespace {

template <std::size_t kPixelBytes>
constexpr Order kOrder = [] {
  Order order{};
  for (std::size_t i = 0; i < order.size(); ++i) {
    order[i] = static_cast<std::uint8_t>(i % kPixelBytes);
  }
  return order;
}();

}  // namespace

const Order& OrderOf(std::size_t pixelBytes) noexcept {
  return pixelBytes == 3 ? kOrder<3> : kOrder<4>;
}

void RepeatPortable(std::uint8_t* out, std::size_t bytes, const Pixel& pixel, const Order& order) noexcept {
  std::array<std::uint8_t, kPeriod> pattern;
  for (std::size_t i = 0; i < kPeriod; ++i) {
    pattern[i] = pixel[order[i]];
  }
  for (; bytes >= kPeriod; bytes -= kPeriod, out += kPeriod) {
    std::memcpy(out, pattern.data(), kPeriod);
  }
  std::memcpy(out, pattern.data(), bytes);
}

}  // namespace pixels

void FillPixels(std::uint8_t* out, std::size_t count, std::size_t pixelBytes, Colour colour) noexcept {
  static const pixels::Repeat repeat =
      pixels::VectorRepeat() != nullptr ? pixels::VectorRepeat() : &pixels::RepeatPortable;
  const pixels::Pixel pixel = {static_cast<std::uint8_t>(colour >> 16U), static_cast<std::uint8_t>(colour >> 8U),
                               static_cast<std::uint8_t>(colour), 0};
  if (count > 10) {  // more than 32 bytes
    repeat(out, count * pixelBytes, pixel, pixels::OrderOf(pixelBytes));
    return;
  }
  for (; count > 0; --count, out += pixelBytes) {
    std::memcpy(out, pixel.data(), pixelBytes);
  }
}

}  // namespace kiv
