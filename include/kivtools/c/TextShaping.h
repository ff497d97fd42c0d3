/**
 * @file
 * Quoting, padding, masks and names. Lengths, widths and positions are in characters, which are bytes.
 */
#ifndef KIVTOOLS_C_TEXT_SHAPING_H
#define KIVTOOLS_C_TEXT_SHAPING_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A 16-byte identifier in the parts of its usual text form. */
typedef struct KivGuid {
  uint32_t data1;
  uint16_t data2, data3;
  uint8_t data4[8];
} KivGuid;

/** The text between two quote characters, those within doubled. Example: l'an in ' gives 'l''an'. */
KIV_API KivLength KivTextIntreGhilimele(char quote, const char* text, size_t length, char* buffer, size_t capacity);

/** The text between double quotes. Example: a gives "a" with its quotes. */
KIV_API KivLength KivTextInGhilimele(const char* text, size_t length, char* buffer, size_t capacity);

/** KivTextIntreGhilimele with its arguments the other way round. Example: a and | give |a|. */
KIV_API KivLength KivQuoteText(const char* text, size_t length, char quote, char* buffer, size_t capacity);

/** The text without its double quotes. Example: "ab""c" gives ab"c. */
KIV_API KivLength KivTextDinGhilimele(const char* text, size_t length, char* buffer, size_t capacity);

/** The text with fill before it up to width characters. Example: "7", 3, '0' gives "007". */
KIV_API KivLength KivPadLeft(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity);

/** The text with fill after it up to width characters. Example: "7", 3, '.' gives "7..". */
KIV_API KivLength KivPadRight(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity);

/**
 * The text at exactly width characters, continued with fill (a blank if empty) or cut before its last character. Fails
 * with KIV_ERROR_GENERAL for a width below 1. Example: "abcdef" at 3 gives "abf".
 */
KIV_API KivLength KivTextDeLatimeFixa(const char* text, size_t length, int32_t width, const char* fill,
                                      size_t fillLength, char* buffer, size_t capacity);

/** The decimal digits of the text. Example: "-1.5" gives "15". */
KIV_API KivLength KivStripDot(const char* text, size_t length, char* buffer, size_t capacity);

/**
 * An amount as digits with exactly two decimals, cut. Fails with KIV_ERROR_GENERAL for two decimal points.
 * Example: "12,5" gives "1250".
 */
KIV_API KivLength KivStripDotExtract2CifreDupaVirgula(const char* text, size_t length, char* buffer, size_t capacity);

/** The text with "." between groups; fails with KIV_ERROR_GENERAL for a group below 1. Example: "1234", 3: "123.4". */
KIV_API KivLength KivPunePuncteInSimbol(const char* text, size_t length, int32_t group, char* buffer, size_t capacity);

/** Whether the text fits the mask of "#", "?", "*" and literal characters. Example: "12-AB" fits "##-??". */
KIV_API KivAnswer KivRespectaMasca(const char* text, size_t length, const char* mask, size_t maskLength);

/** Whether two identifiers are equal. Example: 1 for the same one. */
KIV_API KivAnswer KivGuidEgal(const KivGuid* left, const KivGuid* right);

/** The first word of a full name. Example: "Popescu Ion" gives "Popescu". */
KIV_API KivLength KivNumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity);

/** The second word of a full name. Example: "Popescu Ion" gives "Ion". */
KIV_API KivLength KivPrenumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity);

/** A telephone number in dotted groups. Example: "0722 123456" gives "0722.123.456". */
KIV_API KivLength KivScrieFrumosNrTelefon(const char* number, size_t length, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
