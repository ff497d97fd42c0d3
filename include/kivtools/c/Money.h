/**
 * @file
 * Sums of money and scaled integers as Romanian numeric text, and back. Sums are counts of ten-thousandths of a leu.
 */
#ifndef KIVTOOLS_C_MONEY_H
#define KIVTOOLS_C_MONEY_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The amount with that many decimals (0 to 4; more give four, a negative count none after the comma), cut and not
 * rounded, a comma and a blank before them. Example: 12345678900 and 2 give "1.234.567, 89".
 */
KIV_API KivLength KivCurrencyToRoStr(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity);

/** The same without the blank. Example: "1.234.567,89". */
KIV_API KivLength KivCurrencyToRoStrFaraSpatiu(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity);

/**
 * An amount in old lei as new lei: divided by 10000, halves to even, with four decimals, or two where the last two are
 * zero; decimals is ignored. Example: 123456780000 gives "1.234, 5678".
 */
KIV_API KivLength KivCurrencyToRoStrRON(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity);

/**
 * Reads an amount; stores it in *tenThousandths. Fails with KIV_ERROR_GENERAL for a second comma or a foreign
 * character, KIV_ERROR_CONVERSION for an amount out of range. Example: "-1 234,5" gives -12345000.
 */
KIV_API KivStatus KivRoStrToCurrency(const char* text, size_t length, int64_t* tenThousandths);

/**
 * An integer whose scale kind names: 0 whole, 2 hundredths not grouped, 22 hundredths, 4 and 422 ten-thousandths with
 * two decimals if exact, 42 ten-thousandths rounded to two, 3 in brackets. Fails with KIV_ERROR_GENERAL for another
 * kind. Example: 123456 of kind 22 gives "1.234,56".
 */
KIV_API KivLength KivScrieFoarteFrumos(int64_t value, int32_t kind, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
