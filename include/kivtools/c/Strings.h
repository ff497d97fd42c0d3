/**
 * @file
 * Splitting, a textual hash, rounding, defaults for absent values, and questions to the system.
 */
#ifndef KIVTOOLS_C_STRINGS_H
#define KIVTOOLS_C_STRINGS_H

#include "kivtools/c/StringList.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The kinds of a KivVariant. */
enum {
  KIV_VARIANT_NULL = 0,
  KIV_VARIANT_BOOLEAN = 1,   /**< integer: 0 for no */
  KIV_VARIANT_INTEGER = 2,   /**< integer */
  KIV_VARIANT_DOUBLE = 3,    /**< number */
  KIV_VARIANT_CURRENCY = 4,  /**< integer: ten-thousandths */
  KIV_VARIANT_DATE_TIME = 5, /**< number: days since 30 December 1899 */
  KIV_VARIANT_TEXT = 6       /**< text and length */
};

/** A loosely typed value: its kind says which member holds it. */
typedef struct KivVariant {
  int32_t kind;
  int64_t integer;
  double number;
  const char* text;
  size_t length;
} KivVariant;

/**
 * Replaces the list's content by the pieces of the text between separators, at most limit of them; the last holds the
 * rest. Example: ",", "a,b,,c", 2 gives "a" and "b,,c".
 */
KIV_API KivStatus KivExplode(const char* separators, size_t separatorsLength, const char* text, size_t length,
                             int32_t limit, KivStringList* pieces);

/** Appends the pieces between separators that are not empty. Example: "a,b,,c" and "," append "a", "b", "c". */
KIV_API KivStatus KivSplitTextOnSeparator(const char* text, size_t length, const char* separators,
                                          size_t separatorsLength, KivStringList* list);

/** A short hash as a decimal number. Example: "A" gives "130". */
KIV_API KivLength KivStringHash(const char* text, size_t length, char* buffer, size_t capacity);

/** The path with runs of backslashes after its second character shrunk to one. Example: "\\a\\\b" gives "\\a\b". */
KIV_API KivLength KivRemoveDualSlshPath(const char* path, size_t length, char* buffer, size_t capacity);

/**
 * The nearest integer, halves up. Fails with KIV_ERROR_GENERAL for what is no number and for results outside 64 bits.
 * Example: 2.5 gives 3, -2.5 gives -2.
 */
KIV_API KivStatus KivSmartRound(double value, double* result);

/** The nearest multiple of 10^digit (digit -128 to 127), halves up; fails likewise. Example: 0.125, -2 gives 0.13. */
KIV_API KivStatus KivSmartRoundTo(double value, int32_t digit, double* result);

/** The quarter of a month, 1 to 4; -1 for what is no month, which is no failure. Example: 4 gives 2. */
KIV_API int32_t KivTrimestruLuna(int32_t month);

/** A value as days since 30 December 1899, defaultDays for the null kind. Example: the text "1.5" gives 1.5. */
KIV_API KivStatus KivVarToDateDef(const KivVariant* value, double defaultDays, double* days);

/** A value as a 32-bit integer, halves to even, defaultValue for the null kind. Example: 2.5 gives 2. */
KIV_API KivStatus KivVarToIntDef(const KivVariant* value, int32_t defaultValue, int32_t* result);

/** The larger of two integers. Example: 2 and 3 give 3. */
KIV_API int32_t KivMaxInt(int32_t a, int32_t b);

/** The smaller of two integers. Example: 2 and 3 give 2. */
KIV_API int32_t KivMinInt(int32_t a, int32_t b);

/** The user's name. Example: "ana". */
KIV_API KivLength KivLogOnUserName(char* buffer, size_t capacity);

/** Whether the operating system's major version is 6 or more. Example: 1 on Windows 10. */
KIV_API KivAnswer KivEsteWindowsVista(void);

/** Puts the text on the clipboard; fails with KIV_ERROR_SYSTEM where it cannot be opened. Example: 0. */
KIV_API KivStatus KivCopiazaTextInClipboard(const char* text, size_t length);

#ifdef __cplusplus
}
#endif

#endif
