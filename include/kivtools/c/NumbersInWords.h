/**
 * @file
 * Numbers and sums of money in Romanian words: upper case, no diacritics, no blank within a number, or as people read
 * them (KivInCuvinte...; see kivtools/WinUtil/ReadableWords.h).
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

/** The gender of what is counted. */
enum { KIV_GENDER_MASCULINE = 0, KIV_GENDER_FEMININE = 1, KIV_GENDER_NEUTER = 2 };

/**
 * A whole number of any size in lower case, with diacritics and blanks. Fails with KIV_ERROR_ARGUMENT for a gender that
 * does not exist. Example: -21 and KIV_GENDER_FEMININE give "minus douăzeci şi una".
 */
KIV_API KivLength KivInCuvinte(int64_t number, int32_t gender, char* buffer, size_t capacity);

/**
 * A sum of money of any size and sign in the same words; decimals past the hundredths are dropped. The currency is
 * "RON", "EUR" or "USD", or six fields: singular, plural and gender (m, f or n) of the unit and of its hundredth. Fails
 * with KIV_ERROR_GENERAL for any other. Example: 23045000 and "RON", or "leu,lei,m,ban,bani,m", give "două mii trei
 * sute patru lei şi cincizeci de bani".
 */
KIV_API KivLength KivInCuvinteCurrency(int64_t tenThousandths, const char* currency, size_t length, char* buffer,
                                       size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
