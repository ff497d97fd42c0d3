#include <algorithm>
#include <cmath>

#include "kivtools/WinUtil/Colours.h"

// Doubles as the processor has them, one operation after the other, so that every system gives the same bytes.

namespace kiv {
namespace {

/// Channels of a 255th are never nearer than this.
constexpr double kTolerance = 0.001;

bool Same(double a, double b) {
  return std::abs(a - b) <= kTolerance;
}

std::uint8_t Byte(double channel) {
  const double scaled = channel * 255;
  if (!(scaled > 0)) {
    return 0;  // not a number, too
  }
  return static_cast<std::uint8_t>(std::min(scaled, 255.0));
}

}  // namespace

void RGB2HSV(std::uint8_t red, std::uint8_t green, std::uint8_t blue, double& hue, double& saturation, double& value) {
  const double r = red / 255.0;
  const double g = green / 255.0;
  const double b = blue / 255.0;
  const double max = std::max({r, g, b});
  const double delta = max - std::min({r, g, b});
  value = max;
  if (delta == 0) {
    hue = 0;
    saturation = 0;
    return;
  }
  saturation = delta / max;
  const auto away = [&](double channel) { return ((max - channel) / 6 + delta / 2) / delta; };
  if (Same(r, max)) {
    hue = away(b) - away(g);
  } else if (Same(g, max)) {
    hue = 1.0 / 3 + away(r) - away(b);
  } else {
    hue = 2.0 / 3 + away(g) - away(r);
  }
  if (hue < 0) {
    hue += 1;
  }
  if (hue > 1) {
    hue -= 1;
  }
}

void HSV2RGB(double hue, double saturation, double value, std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) {
  if (saturation == 0) {
    red = green = blue = Byte(value);
    return;
  }
  const double h = hue * 6;
  const double sixth = std::floor(h);
  const double rest = h - sixth;
  const std::uint8_t v = Byte(value);
  const std::uint8_t p = Byte(value * (1 - saturation));
  const std::uint8_t q = Byte(value * (1 - saturation * rest));
  const std::uint8_t t = Byte(value * (1 - saturation * (1 - rest)));
  const auto give = [&](std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    red = r;
    green = g;
    blue = b;
  };
  if (sixth == 0) {
    give(v, t, p);
  } else if (sixth == 1) {
    give(q, v, p);
  } else if (sixth == 2) {
    give(p, v, t);
  } else if (sixth == 3) {
    give(p, q, v);
  } else if (sixth == 4) {
    give(t, p, v);
  } else {
    give(v, p, q);
  }
}

}  // namespace kiv
