/**
 * @file
 * The M1 encoding, which keeps values in settings out of plain sight. It has no key and protects nothing.
 */
#ifndef KIVTOOLS_C_M1_ENCODING_H
#define KIVTOOLS_C_M1_ENCODING_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The text in M1: four printable characters for each byte, chosen at random among equivalent ones. Every call gives
 * other characters but the same length, 4 * length, so the buffer can be provided at once. Example: "A" may give
 * "bGi5".
 */
KIV_API KivLength KivEncodeM1String(const char* text, size_t length, char* buffer, size_t capacity);

/**
 * The text that M1 characters encode. Fails with KIV_ERROR_GENERAL if their number is not a multiple of four.
 * Example: "0100" gives the byte 5.
 */
KIV_API KivLength KivDecodeM1String(const char* encoded, size_t length, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
