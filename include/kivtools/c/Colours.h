/**
 * @file
 * Tints of a colour, hue, saturation and value, and arrays of gradient colours. Colours are 0x00BBGGRR; one with a top
 * byte names a system colour, which the host is asked for.
 */
#ifndef KIVTOOLS_C_COLOURS_H
#define KIVTOOLS_C_COLOURS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The channels of a colour, 0 to 255. Example: 0x00FF8001 gives 1, 128 and 255. */
KIV_API KivStatus KivExtractRGB(uint32_t colour, int32_t* red, int32_t* green, int32_t* blue);

/**
 * A colour with its channels raised or lowered by so much, each kept within 0 to 255; a green of 255 counts as 256
 * before. Example: -20, -20, -20 and 0xFFFFFF give 0xEBECEB.
 */
KIV_API KivStatus KivDeltaCuloare(int32_t redDelta, int32_t greenDelta, int32_t blueDelta, uint32_t colour,
                                  uint32_t* result);

/** Lighter by 20 in each channel. Example: 0x101010 gives 0x242424. */
KIV_API KivStatus KivLite(uint32_t colour, uint32_t* result);
/** Lighter by 10. Example: 0x101010 gives 0x1A1A1A. */
KIV_API KivStatus KivLiteLite(uint32_t colour, uint32_t* result);
/** Darker by 20. Example: 0xFFFFFF gives 0xEBECEB. */
KIV_API KivStatus KivDark(uint32_t colour, uint32_t* result);
/** Darker by 10. Example: 0x101010 gives 0x060606. */
KIV_API KivStatus KivDarkDark(uint32_t colour, uint32_t* result);
/** Green and blue lowered by 20. Example: 0x808080 gives 0x6C6C80. */
KIV_API KivStatus KivLiteRed(uint32_t colour, uint32_t* result);
/** Red and blue lowered by 20. Example: 0x808080 gives 0x6C806C. */
KIV_API KivStatus KivLiteGreen(uint32_t colour, uint32_t* result);
/** Red and green lowered by 20. Example: 0x808080 gives 0x806C6C. */
KIV_API KivStatus KivLiteBlue(uint32_t colour, uint32_t* result);
/** Green and blue lowered by 10. Example: 0x808080 gives 0x767680. */
KIV_API KivStatus KivLiteLiteRed(uint32_t colour, uint32_t* result);
/** Red and blue lowered by 10. Example: 0x808080 gives 0x768076. */
KIV_API KivStatus KivLiteLiteGreen(uint32_t colour, uint32_t* result);
/** Red and green lowered by 10. Example: 0x808080 gives 0x807676. */
KIV_API KivStatus KivLiteLiteBlue(uint32_t colour, uint32_t* result);
/** Pushed towards blue: blue raised by 50, or above 200 the others lowered by 50. Example: 0 gives 0x320000. */
KIV_API KivStatus KivTurnBlue(uint32_t colour, uint32_t* result);
/** The same towards red. Example: 0x283CC9 gives 0x280AC9. */
KIV_API KivStatus KivTurnRed(uint32_t colour, uint32_t* result);
/** The same towards green. Example: 0 gives 0x003200. */
KIV_API KivStatus KivTurnGreen(uint32_t colour, uint32_t* result);

/** Hue, saturation and value, each 0 to 1. Example: 0, 255, 0 gives 1/3, 1 and 1. */
KIV_API KivStatus KivRGB2HSV(uint8_t red, uint8_t green, uint8_t blue, double* hue, double* saturation, double* value);

/** The channels of a hue, saturation and value, cut to bytes. Example: 0, 0 and 0.5 give 127, 127 and 127. */
KIV_API KivStatus KivHSV2RGB(double hue, double saturation, double value, uint8_t* red, uint8_t* green, uint8_t* blue);

/**
 * Fills an array of `count` colours with those on the way from one to another; the last is one step short of `to`.
 * Example: 0x000000, 0xFFFFFF and a count of 2 give 0x000000 and 0x7F7F7F.
 */
KIV_API KivStatus KivGenerateGradientFillColorArray(uint32_t from, uint32_t to, uint32_t* colours, size_t count);

#ifdef __cplusplus
}
#endif

#endif
