/**
 * @file
 * Rounding that settles halves upward.
 */
#ifndef KIVTOOLS_C_ROUNDING_H
#define KIVTOOLS_C_ROUNDING_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The nearest integer, halves up. Fails with KIV_ERROR_GENERAL for what is no number and for results outside 64 bits.
 * Example: 2.5 gives 3, -2.5 gives -2.
 */
KIV_API KivStatus KivSmartRound(double value, double* result);

/** The nearest multiple of 10^digit (digit -128 to 127), halves up; fails likewise. Example: 0.125, -2 gives 0.13. */
KIV_API KivStatus KivSmartRoundTo(double value, int32_t digit, double* result);

#ifdef __cplusplus
}
#endif

#endif
