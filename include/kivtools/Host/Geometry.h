/// @file
/// Places on the screen and inside windows, in pixels.
#pragma once

#include <cstdint>

namespace kiv::host {

/// A place: to the right and down from the origin; on the screen both may be negative.
struct Point {
  std::int32_t x = 0;
  std::int32_t y = 0;

  friend constexpr bool operator==(const Point&, const Point&) = default;
};

/// A rectangle; the right and bottom edges are the first that lie outside. Example: `Rect::At(10, 20, 100, 50)` is
/// {10, 20, 110, 70}.
struct Rect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  /// The rectangle of that size with its left upper corner there.
  [[nodiscard]] static constexpr Rect At(std::int32_t left, std::int32_t top, std::int32_t width,
                                         std::int32_t height) noexcept {
    return {left, top, left + width, top + height};
  }

  [[nodiscard]] constexpr std::int32_t Width() const noexcept { return right - left; }
  [[nodiscard]] constexpr std::int32_t Height() const noexcept { return bottom - top; }

  friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// A monitor. With several of them, those to the left of the first one or above it have negative coordinates.
struct Monitor {
  /// The whole monitor.
  Rect bounds;
  /// The part that task bars and the like leave free.
  Rect workArea;

  friend constexpr bool operator==(const Monitor&, const Monitor&) = default;
};

}  // namespace kiv::host
