/**
 * @file
 * The rules of the C interface, its error report, and what every host needs first.
 *
 * Text is Windows-1250 bytes, as in the library; KivTextToUtf8 and KivUtf8ToText convert it. Text arguments are
 * a pointer and a length in bytes (KIV_ZERO_ENDED where the text ends at its first zero); a null pointer is accepted
 * with length 0 only.
 *
 * A function that gives Text writes it into the caller's buffer, cut to capacity - 1 bytes and zero-terminated, and
 * returns the whole length in bytes without the terminator, as snprintf does: a return value >= capacity says that the
 * buffer was too small. A null buffer with capacity 0 asks for the length. A function that gives a number or a yes or
 * no (1 or 0) writes or returns it as its comment says.
 *
 * On failure a function returns a negative number, the error's code with its sign turned, and leaves every result
 * untouched; KivLastError and KivLastErrorMessage then tell the calling thread what happened. A successful call does
 * not clear them. No exception leaves a function of this interface.
 */
#ifndef KIVTOOLS_C_BASE_H
#define KIVTOOLS_C_BASE_H

#include <stddef.h>
#include <stdint.h>

#include "kivtools/Export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** In place of a length: the text ends at its first zero. */
#define KIV_ZERO_ENDED ((size_t)-1)

/** What can go wrong. Functions return these negated. */
enum {
  KIV_OK = 0,
  KIV_ERROR_GENERAL = 1,    /**< the operation refused its input; the message says why */
  KIV_ERROR_CONVERSION = 2, /**< a text is not the number or encoding it has to be */
  KIV_ERROR_DATE = 3,       /**< a date or time that the calendar does not have */
  KIV_ERROR_DIVISION = 4,   /**< division by zero */
  KIV_ERROR_CAST = 5,       /**< an object of another class */
  KIV_ERROR_LIST_INDEX = 6, /**< a list index out of range */
  KIV_ERROR_ASSERTION = 7,  /**< a broken internal invariant */
  KIV_ERROR_SYSTEM = 8,     /**< the operating system refused; the message has its text */
  KIV_ERROR_ARGUMENT = 9,   /**< a null pointer where a value is needed, or an enumeration value that does not exist */
  KIV_ERROR_OUT_OF_MEMORY = 10, /**< no memory for the result */
  KIV_ERROR_PACKET = 11, /**< a packet is damaged; the message names chunk and byte, and so does KivLastErrorPlace */
  KIV_ERROR_FILTER = 12  /**< a text is no expression, or has no value in a row; KivLastErrorPlace tells the byte */
};

/** A length in bytes, or a negated error code. */
typedef ptrdiff_t KivLength;
/** KIV_OK, or a negated error code. */
typedef int32_t KivStatus;
/** 1 for yes, 0 for no, or a negated error code. */
typedef int32_t KivAnswer;

/** The code of this thread's last failure, KIV_OK before the first. Example: 9 after a null buffer. */
KIV_API int32_t KivLastError(void);

/** The system's own number for this thread's last failure (`errno`, `GetLastError()`) where that is KIV_ERROR_SYSTEM, 0
 * for every other. Example: 2 for a file that is not there. */
KIV_API int32_t KivLastSystemCode(void);

/** The message of this thread's last failure, at most 1023 bytes of it. Example: "Numarul -5 nu se afla in intervalul
 * 0..999". */
KIV_API KivLength KivLastErrorMessage(char* buffer, size_t capacity);

/** Starts the library's units; calls nest. Example: 0. */
KIV_API KivStatus KivInitialize(void);

/** Shuts the library's units down with the last matching call. Example: 0. */
KIV_API KivStatus KivFinalize(void);

/** The library's version. Example: "0.1.0". */
KIV_API KivLength KivVersion(char* buffer, size_t capacity);

/**
 * Windows-1250 to UTF-8. commaBelow not 0 gives today's letters with a comma below, 0 the cedilla forms that the code
 * page maps to. Example: the bytes AA 41 give "ŞA" or "ȘA".
 */
KIV_API KivLength KivTextToUtf8(const char* text, size_t length, int32_t commaBelow, char* buffer, size_t capacity);

/**
 * UTF-8 to Windows-1250; both forms of s and t with a mark below are taken. Fails with KIV_ERROR_CONVERSION for
 * malformed UTF-8 and for letters that the code page lacks. Example: "ţară" gives the bytes FE 61 72 E3.
 */
KIV_API KivLength KivUtf8ToText(const char* utf8, size_t length, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
