/**
 * @file
 * The fiscal identification code; see kivtools/WinUtil/FiscalCode.h for the rules.
 */
#ifndef KIVTOOLS_C_FISCAL_CODE_H
#define KIVTOOLS_C_FISCAL_CODE_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Whether the fiscal code, or the personal numeric code of 13 digits in its place, is valid. Digits only.
 * Example: "12345674" gives 1, "RO12345674" gives 0.
 */
KIV_API KivAnswer KivTestCodFiscal(const char* code, size_t length);

#ifdef __cplusplus
}
#endif

#endif
