/**
 * @file
 * Splitting, a textual hash, the cleaning of paths, and three functions on integers.
 */
#ifndef KIVTOOLS_C_STRINGS_H
#define KIVTOOLS_C_STRINGS_H

#include "kivtools/c/StringList.h"

#ifdef __cplusplus
extern "C" {
#endif

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

/** The quarter of a month, 1 to 4; -1 for what is no month, which is no failure. Example: 4 gives 2. */
KIV_API int32_t KivTrimestruLuna(int32_t month);

/** The larger of two integers. Example: 2 and 3 give 3. */
KIV_API int32_t KivMaxInt(int32_t a, int32_t b);

/** The smaller of two integers. Example: 2 and 3 give 2. */
KIV_API int32_t KivMinInt(int32_t a, int32_t b);

#ifdef __cplusplus
}
#endif

#endif
