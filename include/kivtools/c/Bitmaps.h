/**
 * @file
 * Fills, gradients and the blur on pictures in the host's own memory: three bytes a pixel (blue, green, red), rows from
 * the top down. `pixels` is the top row's first byte and `stride` the bytes from a row to the one below it, negative
 * for pictures that lie upside down; what lies between the rows is not touched. A null pointer is accepted where the
 * picture has no pixels. Colours are 0x00BBGGRR; one with a top byte names a system colour.
 *
 *     uint8_t pixels[48 * 640 * 3];
 *     KivGenerateHorizFountainFill(pixels, 640 * 3, 640, 48, 0x800000, 0xFFFFFF);
 *     KivSaveBitmap(pixels, 640 * 3, 640, 48, "fond.bmp", KIV_ZERO_ENDED);
 */
#ifndef KIVTOOLS_C_BITMAPS_H
#define KIVTOOLS_C_BITMAPS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Fills a picture from one colour on the left towards another on the right, which is not quite reached.
 * Example: from 0x000000 to 0xFFFFFF in two columns: 0x000000 and 0x7F7F7F.
 */
KIV_API KivStatus KivGenerateHorizFountainFill(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height,
                                               uint32_t from, uint32_t to);

/** The same from the top down. Example: in two rows 0x000000 and 0x7F7F7F. */
KIV_API KivStatus KivGenerateVertFountainFill(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height,
                                              uint32_t from, uint32_t to);

/**
 * Paints a gradient of 513 colours from left to right, with a grain of random pixels before each change of colour. The
 * last row and the last column get random pixels alone. Example: a picture of 640 columns shows the whole gradient.
 */
KIV_API KivStatus KivGenerateGradientFillBitmap(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height,
                                                uint32_t from, uint32_t to);

/** Softens a picture, level 2 (and below) or 3 (and above). Example: a white pixel on black becomes 141 by level 2. */
KIV_API KivStatus KivAntiAliasBmp(uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height, int32_t level);

/**
 * Writes a picture as an uncompressed .bmp file of 24 bits a pixel; what was at `path` is replaced as a whole or stays
 * as it was. Example: 0, and the file is there.
 */
KIV_API KivStatus KivSaveBitmap(const uint8_t* pixels, ptrdiff_t stride, int32_t width, int32_t height,
                                const char* path, size_t pathLength);

/** A picture that KivOpenBitmap has read; KivCloseBitmap releases it. */
typedef struct KivBitmap KivBitmap;

/**
 * Reads an uncompressed .bmp file of 1 to 32 bits a pixel into memory of its own, three bytes a pixel. Example:
 * KivOpenBitmap("fond.bmp", KIV_ZERO_ENDED, &bitmap).
 */
KIV_API KivStatus KivOpenBitmap(const char* path, size_t pathLength, KivBitmap** bitmap);

/**
 * Where the picture's pixels lie and how, as the functions above take them; they may be written. The pointer is null
 * for a picture without pixels. Example: 640 and 48.
 */
KIV_API KivStatus KivBitmapPixels(KivBitmap* bitmap, uint8_t** pixels, ptrdiff_t* stride, int32_t* width,
                                  int32_t* height);

/** Releases a picture; null is nothing to release. Example: KivCloseBitmap(bitmap). */
KIV_API void KivCloseBitmap(KivBitmap* bitmap);

#ifdef __cplusplus
}
#endif

#endif
