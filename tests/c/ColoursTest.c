/* Colours, and pictures in the host's own memory and in files. */
#include <stdlib.h>

#include "Expect.h"

typedef KivStatus (*Shift)(uint32_t colour, uint32_t* result);

/* What becomes of 0x808080. */
static int Shifts(Shift shift, uint32_t expected) {
  uint32_t result = 0;
  return shift(0x808080, &result) == KIV_OK && result == expected;
}

static void TestShifts(void) {
  EXPECT(Shifts(KivLite, 0x949494));
  EXPECT(Shifts(KivLiteLite, 0x8A8A8A));
  EXPECT(Shifts(KivDark, 0x6C6C6C));
  EXPECT(Shifts(KivDarkDark, 0x767676));
  EXPECT(Shifts(KivLiteRed, 0x6C6C80));
  EXPECT(Shifts(KivLiteGreen, 0x6C806C));
  EXPECT(Shifts(KivLiteBlue, 0x806C6C));
  EXPECT(Shifts(KivLiteLiteRed, 0x767680));
  EXPECT(Shifts(KivLiteLiteGreen, 0x768076));
  EXPECT(Shifts(KivLiteLiteBlue, 0x807676));
  EXPECT(Shifts(KivTurnBlue, 0xB28080));
  EXPECT(Shifts(KivTurnRed, 0x8080B2));
  EXPECT(Shifts(KivTurnGreen, 0x80B280));
}

static void TestColours(void) {
  int32_t red = 0;
  int32_t green = 0;
  int32_t blue = 0;
  uint32_t colour = 0;
  double hue = -1;
  double saturation = -1;
  double value = -1;
  uint8_t bytes[3] = {0};
  uint32_t colours[2] = {1, 1};
  EXPECT(KivExtractRGB(0xFF8001, &red, &green, &blue) == KIV_OK && red == 1 && green == 128 && blue == 255);
  EXPECT(KivDeltaCuloare(1, -2, 3, 0x000A00, &colour) == KIV_OK && colour == 0x030801);
  EXPECT(KivRGB2HSV(0, 0, 51, &hue, &saturation, &value) == KIV_OK && saturation == 1 && value == 0.2);
  EXPECT(hue > 0.66 && hue < 0.67);
  EXPECT(KivHSV2RGB(0, 1, 0.5, &bytes[0], &bytes[1], &bytes[2]) == KIV_OK);
  EXPECT(bytes[0] == 127 && bytes[1] == 0 && bytes[2] == 0);
  EXPECT(KivGenerateGradientFillColorArray(0, 0xFFFFFF, colours, 2) == KIV_OK);
  EXPECT(colours[0] == 0 && colours[1] == 0x7F7F7F);
}

enum { kWidth = 3, kHeight = 2, kStride = 12 };

static void TestFills(void) {
  static const uint8_t across[kStride * kHeight] = {0, 0, 0, 85, 85, 85, 170, 170, 170, 9, 9, 9,
                                                    0, 0, 0, 85, 85, 85, 170, 170, 170, 9, 9, 9};
  static const uint8_t down[kStride * kHeight] = {0,   0,   0,   0,   0,   0,   0,   0,   0,   9, 9, 9,
                                                  127, 127, 127, 127, 127, 127, 127, 127, 127, 9, 9, 9};
  uint8_t pixels[kStride * kHeight];
  uint8_t flat[514 * 2 * 3] = {0};
  memset(pixels, 9, sizeof pixels);
  EXPECT(KivGenerateHorizFountainFill(pixels, kStride, kWidth, kHeight, 0, 0xFFFFFF) == KIV_OK);
  EXPECT(memcmp(pixels, across, sizeof pixels) == 0);
  EXPECT(KivAntiAliasBmp(pixels, kStride, kWidth, 1, 0) == KIV_OK);
  EXPECT(pixels[0] == 85 / 6 && pixels[9] == 9);
  EXPECT(KivGenerateVertFountainFill(pixels + kStride, -kStride, kWidth, kHeight, 0xFFFFFF, 0) == KIV_OK);
  EXPECT(memcmp(pixels, down, sizeof pixels) != 0 && pixels[kStride] == 255 && pixels[0] == 127);
  EXPECT(KivGenerateVertFountainFill(pixels, kStride, kWidth, kHeight, 0, 0xFFFFFF) == KIV_OK);
  EXPECT(memcmp(pixels, down, sizeof pixels) == 0);
  EXPECT(KivGenerateGradientFillBitmap(flat, 1542, 514, 2, 0x010203, 0x010203) == KIV_OK);
  EXPECT(flat[0] == 1 && flat[1538] == 3 && flat[1539] == 0 && flat[1542] == 0);
}

static void TestRefusals(void) {
  uint8_t pixels[kStride * kHeight] = {0};
  EXPECT(KivAntiAliasBmp(NULL, kStride, kWidth, kHeight, 2) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivAntiAliasBmp: pixels: pointer nul"));
  EXPECT(KivAntiAliasBmp(NULL, 0, 0, kHeight, 2) == KIV_OK && KivAntiAliasBmp(NULL, 0, kWidth, 0, 3) == KIV_OK);
  EXPECT(KivGenerateGradientFillBitmap(NULL, 0, 0, kHeight, 0, 0) == KIV_OK);
  EXPECT(KivGenerateHorizFountainFill(pixels, kStride, -1, 2, 0, 0) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("dimensiune imposibila: -1 x 2"));
  EXPECT(KivGenerateVertFountainFill(pixels, 8, kWidth, 2, 0, 0) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("stride prea mic: 8 pentru latimea 3"));
  EXPECT(KivGenerateVertFountainFill(pixels, -9, kWidth, 0, 0, 0) == KIV_OK);
}

static void TestFiles(void) {
  static const char path[] = "kiv_c_tests.bmp";
  uint8_t picture[kStride * kHeight];
  KivBitmap* bitmap = NULL;
  uint8_t* pixels = NULL;
  ptrdiff_t stride = 0;
  int32_t width = 0;
  int32_t height = 0;
  for (size_t i = 0; i < sizeof picture; ++i) {
    picture[i] = (uint8_t)(7 * i);
  }
  EXPECT(KivSaveBitmap(picture, kStride, kWidth, kHeight, path, KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivOpenBitmap(path, sizeof path - 1, &bitmap) == KIV_OK);
  EXPECT(KivBitmapPixels(bitmap, &pixels, &stride, &width, &height) == KIV_OK);
  EXPECT(width == kWidth && height == kHeight);
  EXPECT(memcmp(pixels, picture, 9) == 0 && memcmp(pixels + stride, picture + kStride, 9) == 0);
  KivCloseBitmap(bitmap);
  KivCloseBitmap(NULL);
  EXPECT(KivBitmapPixels(NULL, &pixels, &stride, &width, &height) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivOpenBitmap(path, KIV_ZERO_ENDED, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivSaveBitmap(NULL, kStride, kWidth, kHeight, path, KIV_ZERO_ENDED) == -KIV_ERROR_ARGUMENT);
  EXPECT(remove(path) == 0);
  bitmap = (KivBitmap*)picture;
  EXPECT(KivOpenBitmap(path, KIV_ZERO_ENDED, &bitmap) == -KIV_ERROR_SYSTEM && bitmap == (KivBitmap*)picture);
  KivLastErrorMessage(buffer, sizeof buffer);
  EXPECT(strncmp(buffer, "KivOpenBitmap: ", 15) == 0);
  EXPECT(KivSaveBitmap(picture, kStride, kWidth, kHeight, "no/such/folder/a.bmp", KIV_ZERO_ENDED) == -KIV_ERROR_SYSTEM);
  KivLastErrorMessage(buffer, sizeof buffer);
  EXPECT(strncmp(buffer, "KivSaveBitmap: ", 15) == 0);
}

void ColoursTest(void) {
  TestShifts();
  TestColours();
  TestFills();
  TestRefusals();
  TestFiles();
}
