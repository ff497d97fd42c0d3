/**
 * @file
 * Romanian letters to plain ones and back from an escape notation; templates with placeholders.
 */
#ifndef KIVTOOLS_C_TRANSLITERATION_H
#define KIVTOOLS_C_TRANSLITERATION_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The text with the Romanian diacritics taken off and every "?" turned into "t". Example: "Ce?" gives "Cet". */
KIV_API KivLength KivRoToEn(const char* text, size_t length, char* buffer, size_t capacity);

/** The text with its escapes (@a, @s, @@ and so on) turned into letters. Example: "Rom@hnia" gives "România". */
KIV_API KivLength KivRoText(const char* text, size_t length, char* buffer, size_t capacity);

/** The text with every byte `from` replaced by `to`. Example: "1,50" with "," and "." gives "1.50". */
KIV_API KivLength KivCharReplace(const char* text, size_t length, char from, char to, char* buffer, size_t capacity);

/**
 * The mask with its placeholders "%name%" filled. `pairs` are `count` texts: name, value, name, value and so on, with
 * their lengths in `lengths`, or zero-terminated all of them where `lengths` is null. Names compare without regard to
 * the case of ASCII letters. Fails with KIV_ERROR_GENERAL where a placeholder matches a last name without a value.
 * Example: "%Suma% lei" with "suma" and "12,50" gives "12,50 lei".
 */
KIV_API KivLength KivMaskReplace(const char* mask, size_t length, const char* const* pairs, const size_t* lengths,
                                 size_t count, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
