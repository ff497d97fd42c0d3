/**
 * @file
 * Text in other code pages: to UTF-16 and back through a numbered code page. Wide texts are UTF-16 units of the
 * machine's byte order; their lengths and capacities count units, and they too are cut to capacity - 1 and
 * zero-terminated. Code pages have the numbers of Windows: 1250, 1252, 852, 65001 for UTF-8, 0 for the system's own.
 */
#ifndef KIVTOOLS_C_CODE_PAGES_H
#define KIVTOOLS_C_CODE_PAGES_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * A text in a numbered code page as UTF-16, up to the first zero in the result; empty for an unknown code page.
 * Example: the bytes FE 61 in code page 1250 give the units 0163 0061 and the length 2.
 */
KIV_API KivLength KivStringToWideString(const char* text, size_t length, int32_t codePage, uint16_t* buffer,
                                        size_t capacity);

/**
 * UTF-16 as a text in a numbered code page, up to the first zero in the result; letters that it lacks become a
 * similar one or "?". Empty for an unknown code page and where a multi-byte one needs more than one byte beyond the
 * number of units. Example: the units 0163 0061 in code page 1250 give the bytes FE 61.
 */
KIV_API KivLength KivWideStringToString(const uint16_t* wide, size_t length, int32_t codePage, char* buffer,
                                        size_t capacity);

/** 1 where the operating system is of the Unicode family; fails with KIV_ERROR_GENERAL where that is unknown.
 * Example: 1. */
KIV_API KivAnswer KivIsWinOsUnicode(void);

/** Always the empty text; hosts rely on it. Example: the length 0. */
KIV_API KivLength KivUpCaseAsCodePage(const char* text, size_t length, int32_t codePage, char* buffer, size_t capacity);

/** 1 when code page 1250 works on this machine, 0 also before KivInitialize. Example: 1. */
KIV_API KivAnswer KivPage1250Ok(void);

/** The code page used where 1250 is asked for; 0 before KivInitialize, while 1250 is used as it is. Example: 1250. */
KIV_API int32_t KivPage1250Replace(void);

#ifdef __cplusplus
}
#endif

#endif
