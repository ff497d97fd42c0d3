/**
 * @file
 * Numbers and sums of money in Romanian words: upper case, no diacritics, no blank within a number.
 */
#ifndef KIVTOOLS_C_NUMBERS_IN_WORDS_H
#define KIVTOOLS_C_NUMBERS_IN_WORDS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * A whole number in words; only its low 32 bits count, read as a signed number. Fails with KIV_ERROR_GENERAL for
 * negative numbers and from a billion up. Example: 2345 gives "DOUAMIITREISUTEPATRUZECISICINCI".
 */
KIV_API KivLength KivInLitere(int64_t value, char* buffer, size_t capacity);

/**
 * A sum of money, in ten-thousandths of a leu, in words; decimals past the bani are dropped. Fails with
 * KIV_ERROR_GENERAL for sums of -0.01 lei and below and from a billion lei up; -0.0099 lei are still "ZERO LEI".
 * Example: 15000 gives "UNU LEI SI CINCIZECI BANI".
 */
KIV_API KivLength KivInLitereCurrency(int64_t tenThousandths, char* buffer, size_t capacity);

/** The compact form with the bani in digits; fails as KivInLitereCurrency. Example: 10500 gives "UNLEU,05BANI". */
KIV_API KivLength KivInLitereMF(int64_t tenThousandths, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
