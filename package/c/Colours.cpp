#include "kivtools/c/Colours.h"

#include "kivtools/WinUtil/Colours.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

KivStatus Shifted(kiv::Colour (*shift)(kiv::Colour), uint32_t colour, uint32_t* result,
                  const char* name = __builtin_FUNCTION()) noexcept {
  return Run(
      [=] {
        uint32_t& shifted = KIV_REQUIRED(result);
        shifted = shift(colour);
      },
      name);
}

}  // namespace

extern "C" {

KivStatus KivExtractRGB(uint32_t colour, int32_t* red, int32_t* green, int32_t* blue) {
  return Run([=] {
    int32_t& itsRed = KIV_REQUIRED(red);
    int32_t& itsGreen = KIV_REQUIRED(green);
    int32_t& itsBlue = KIV_REQUIRED(blue);
    kiv::ExtractRGB(colour, itsRed, itsGreen, itsBlue);
  });
}

KivStatus KivDeltaCuloare(int32_t redDelta, int32_t greenDelta, int32_t blueDelta, uint32_t colour, uint32_t* result) {
  return Run([=] {
    uint32_t& changed = KIV_REQUIRED(result);
    changed = kiv::DeltaCuloare(redDelta, greenDelta, blueDelta, colour);
  });
}

KivStatus KivLite(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::Lite, colour, result);
}

KivStatus KivLiteLite(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteLite, colour, result);
}

KivStatus KivDark(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::Dark, colour, result);
}

KivStatus KivDarkDark(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::DarkDark, colour, result);
}

KivStatus KivLiteRed(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteRed, colour, result);
}

KivStatus KivLiteGreen(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteGreen, colour, result);
}

KivStatus KivLiteBlue(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteBlue, colour, result);
}

KivStatus KivLiteLiteRed(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteLiteRed, colour, result);
}

KivStatus KivLiteLiteGreen(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteLiteGreen, colour, result);
}

KivStatus KivLiteLiteBlue(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::LiteLiteBlue, colour, result);
}

KivStatus KivTurnBlue(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::TurnBlue, colour, result);
}

KivStatus KivTurnRed(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::TurnRed, colour, result);
}

KivStatus KivTurnGreen(uint32_t colour, uint32_t* result) {
  return Shifted(kiv::TurnGreen, colour, result);
}

KivStatus KivRGB2HSV(uint8_t red, uint8_t green, uint8_t blue, double* hue, double* saturation, double* value) {
  return Run([=] {
    double& itsHue = KIV_REQUIRED(hue);
    double& itsSaturation = KIV_REQUIRED(saturation);
    double& itsValue = KIV_REQUIRED(value);
    kiv::RGB2HSV(red, green, blue, itsHue, itsSaturation, itsValue);
  });
}

KivStatus KivHSV2RGB(double hue, double saturation, double value, uint8_t* red, uint8_t* green, uint8_t* blue) {
  return Run([=] {
    uint8_t& itsRed = KIV_REQUIRED(red);
    uint8_t& itsGreen = KIV_REQUIRED(green);
    uint8_t& itsBlue = KIV_REQUIRED(blue);
    kiv::HSV2RGB(hue, saturation, value, itsRed, itsGreen, itsBlue);
  });
}

KivStatus KivGenerateGradientFillColorArray(uint32_t from, uint32_t to, uint32_t* colours, size_t count) {
  return Run([=] {
    KIV_BUFFER(colours, count);
    kiv::GenerateGradientFillColorArray(from, to, {colours, count});
  });
}

}  // extern "C"
