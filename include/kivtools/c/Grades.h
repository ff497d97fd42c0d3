/**
 * @file
 * School grades in words: upper case with Windows-1250 diacritics. A grade is given times 100.
 */
#ifndef KIVTOOLS_C_GRADES_H
#define KIVTOOLS_C_GRADES_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * A grade in brackets: mode 1 in words, 2 with the hundredths in figures, 3 the same with "%" after them; any other
 * mode gives the empty Text. Example: 950 in mode 2 gives "(NOUĂ, 50)".
 */
KIV_API KivLength KivNotaToStr(int32_t grade, int32_t mode, char* buffer, size_t capacity);

/** A grade in words. Example: 950 gives "NOUĂ, CINCIZECI". */
KIV_API KivLength KivNotaToTextLung(int32_t grade, char* buffer, size_t capacity);

/** A grade in words with its hundredths in figures. Example: 705 gives "ŞAPTE, 05". */
KIV_API KivLength KivNotaToTextScurt(int32_t grade, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
