/**
 * @file
 * The personal numeric code; see kivtools/WinUtil/PersonalNumericCode.h for the rules.
 */
#ifndef KIVTOOLS_C_PERSONAL_NUMERIC_CODE_H
#define KIVTOOLS_C_PERSONAL_NUMERIC_CODE_H

#include "kivtools/c/Base.h"
#include "kivtools/c/CodeFaults.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Whether the personal numeric code is valid. Example: "1800101221144" gives 1, "1800101221145" gives 0. */
KIV_API KivAnswer KivTestCNP(const char* code, size_t length);

/**
 * The same answer, with the first fault of a code that is not valid in `fault` (see kivtools/c/CodeFaults.h). Example:
 * "1800101221145" gives 0 and KIV_CODE_CHECK_DIGIT at 12 with 4 expected.
 */
KIV_API KivAnswer KivExplainTestCNP(const char* code, size_t length, KivCodeFault* fault);

/**
 * Stores the birth year that the first three characters say, without any further check. Fails with KIV_ERROR_GENERAL
 * for fewer than three characters and with KIV_ERROR_CONVERSION where characters 2 and 3 are not a number. Example:
 * "180" stores 1980.
 */
KIV_API KivStatus KivAnulNasteriiDinCnp(const char* code, size_t length, int32_t* year);

/** The birth date with the month's full name. Example: "1 Ianuarie 1980"; "CNP incorect" for an invalid code. */
KIV_API KivLength KivDataNasteriiDinCNP(const char* code, size_t length, char* buffer, size_t capacity);

/** The birth date with the month's short name. Example: "1 ian 1980"; "CNP incorect" for an invalid code. */
KIV_API KivLength KivDataNasteriiDinCNP_scurt(const char* code, size_t length, char* buffer, size_t capacity);

/** Stores the age in calendar years, 0 for an invalid code. Example: "1800101221144" stores 44 on every day of 2024. */
KIV_API KivStatus KivVarstaDinCNP(const char* code, size_t length, int32_t* age);

#ifdef __cplusplus
}
#endif

#endif
