/**
 * @file
 * Why an identifier is not valid; see kivtools/WinUtil/CodeFaults.h. The functions that explain stand beside the
 * checks.
 */
#ifndef KIVTOOLS_C_CODE_FAULTS_H
#define KIVTOOLS_C_CODE_FAULTS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a code was read as. */
enum { KIV_CODE_PERSONAL = 0, KIV_CODE_FISCAL = 1, KIV_CODE_ACCOUNT = 2, KIV_CODE_LOCALITY = 3 };

/** The rule that a code breaks first. */
enum {
  KIV_CODE_VALID = 0,           /**< none */
  KIV_CODE_LENGTH = 1,          /**< there are too few or too many characters */
  KIV_CODE_CHARACTER = 2,       /**< a character has no place in such a code */
  KIV_CODE_FIRST_CHARACTER = 3, /**< the first digit of a personal code, the first letter of an account */
  KIV_CODE_DATE = 4,            /**< the calendar does not have the month or the day */
  KIV_CODE_CHECK_DIGIT = 5      /**< the check digit is another one, or two are in an account */
};

/** The languages of KivCodeFaultText. */
enum { KIV_LANGUAGE_ROMANIAN = 0, KIV_LANGUAGE_ENGLISH = 1 };

/** A code's first fault. */
typedef struct KivCodeFault {
  int32_t kind;     /**< KIV_CODE_PERSONAL and so on */
  int32_t rule;     /**< KIV_CODE_LENGTH and so on */
  size_t position;  /**< where, in bytes from 0; for KIV_CODE_LENGTH the characters that there are */
  int32_t expected; /**< the check digit or digits, or the nearest length, that would be right; else -1 */
} KivCodeFault;

/**
 * The fault as a part of a sentence, without a full stop; positions are counted from 1. Fails with KIV_ERROR_GENERAL
 * for a kind, a rule or a language that does not exist. Example: "the check digit (character 13) should be 4".
 */
KIV_API KivLength KivCodeFaultText(const KivCodeFault* fault, int32_t language, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
