/**
 * @file
 * The fiscal identification code; see kivtools/WinUtil/FiscalCode.h for the rules.
 */
#ifndef KIVTOOLS_C_FISCAL_CODE_H
#define KIVTOOLS_C_FISCAL_CODE_H

#include "kivtools/c/Base.h"
#include "kivtools/c/CodeFaults.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Whether the fiscal code, or the personal numeric code of 13 digits in its place, is valid. Digits only.
 * Example: "12345674" gives 1, "RO12345674" gives 0.
 */
KIV_API KivAnswer KivTestCodFiscal(const char* code, size_t length);

/**
 * The same answer, with the first fault of a code that is not valid. Example: "12345670" gives 0 and
 * KIV_CODE_CHECK_DIGIT at 7 with 4 expected.
 */
KIV_API KivAnswer KivExplainTestCodFiscal(const char* code, size_t length, KivCodeFault* fault);

#ifdef __cplusplus
}
#endif

#endif
