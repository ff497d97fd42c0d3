#include "kivtools/WinUtil/Colours.h"

#include <algorithm>

#include "tools/ResolvedColour.h"

namespace kiv {
namespace {

struct Channels {
  std::int32_t red;
  std::int32_t green;
  std::int32_t blue;
};

/// The channels as the divisions have always given them: exact, but for a green of 255, which becomes 256.
Channels WideChannels(Colour colour) {
  const Colour resolved = ResolvedColour(colour);
  return {static_cast<std::int32_t>(resolved & 0xFFU), static_cast<std::int32_t>((resolved & 0xFF00U) / 255),
          static_cast<std::int32_t>((resolved & 0xFF0000U) / 65535)};
}

Channels ExactChannels(Colour colour) {
  const Channels wide = WideChannels(colour);
  return {std::min(wide.red, 255), std::min(wide.green, 255), std::min(wide.blue, 255)};
}

Colour ColourOf(const Channels& channels) {
  return static_cast<Colour>(channels.red + 256 * channels.green + 65536 * channels.blue);
}

std::int32_t Changed(std::int32_t channel, std::int32_t delta) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{channel} + delta, 0, 255));
}

/// Raises one channel of a colour, or where it is nearly full lowers the others.
Colour Turned(Colour colour, std::int32_t Channels::*own) {
  constexpr std::int32_t kStep = 50;
  constexpr std::int32_t kNearlyFull = 201;
  Channels channels = ExactChannels(colour);
  if (channels.*own < kNearlyFull) {
    channels.*own += kStep;
    return ColourOf(channels);
  }
  for (std::int32_t Channels::*const other : {&Channels::red, &Channels::green, &Channels::blue}) {
    if (other != own && channels.*other > kStep) {
      channels.*other -= kStep;
    }
  }
  return ColourOf(channels);
}

}  // namespace

void ExtractRGB(Colour colour, std::int32_t& red, std::int32_t& green, std::int32_t& blue) {
  const Channels channels = ExactChannels(colour);
  red = channels.red;
  green = channels.green;
  blue = channels.blue;
}

Colour DeltaCuloare(std::int32_t redDelta, std::int32_t greenDelta, std::int32_t blueDelta, Colour colour) {
  const Channels channels = WideChannels(colour);
  return ColourOf(
      {Changed(channels.red, redDelta), Changed(channels.green, greenDelta), Changed(channels.blue, blueDelta)});
}

Colour Lite(Colour colour) {
  return DeltaCuloare(20, 20, 20, colour);
}

Colour LiteLite(Colour colour) {
  return DeltaCuloare(10, 10, 10, colour);
}

Colour Dark(Colour colour) {
  return DeltaCuloare(-20, -20, -20, colour);
}

Colour DarkDark(Colour colour) {
  return DeltaCuloare(-10, -10, -10, colour);
}

Colour LiteRed(Colour colour) {
  return DeltaCuloare(0, -20, -20, colour);
}

Colour LiteGreen(Colour colour) {
  return DeltaCuloare(-20, 0, -20, colour);
}

Colour LiteBlue(Colour colour) {
  return DeltaCuloare(-20, -20, 0, colour);
}

Colour LiteLiteRed(Colour colour) {
  return DeltaCuloare(0, -10, -10, colour);
}

Colour LiteLiteGreen(Colour colour) {
  return DeltaCuloare(-10, 0, -10, colour);
}

Colour LiteLiteBlue(Colour colour) {
  return DeltaCuloare(-10, -10, 0, colour);
}

Colour TurnBlue(Colour colour) {
  return Turned(colour, &Channels::blue);
}

Colour TurnRed(Colour colour) {
  return Turned(colour, &Channels::red);
}

Colour TurnGreen(Colour colour) {
  return Turned(colour, &Channels::green);
}

}  // namespace kiv
