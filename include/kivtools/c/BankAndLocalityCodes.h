/**
 * @file
 * Account numbers and locality codes; see kivtools/WinUtil/BankAndLocalityCodes.h for the rules.
 */
#ifndef KIVTOOLS_C_BANK_AND_LOCALITY_CODES_H
#define KIVTOOLS_C_BANK_AND_LOCALITY_CODES_H

#include "kivtools/c/Base.h"
#include "kivtools/c/CodeFaults.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Whether the account number's remainder modulo 97 is 1; blanks, lower case and a leading "IBAN" are accepted.
 * Example: "ro49 aaaa 1b31 0075 9384 0000" gives 1.
 */
KIV_API KivAnswer KivValideazaIBAN(const char* account, size_t length);

/**
 * The same answer, with the fault of an account number that is not valid. Example: "RO94AAAA1B31007593840000" gives 0
 * and KIV_CODE_CHECK_DIGIT at 2 with 49 expected.
 */
KIV_API KivAnswer KivExplainValideazaIBAN(const char* account, size_t length, KivCodeFault* fault);

/** Whether the trimmed text begins with a letter and passes KivValideazaIBAN. Example: "101" gives 0. */
KIV_API KivAnswer KivEsteIBAN(const char* text, size_t length);

/** The same answer, with the fault of a text that is none. Example: "101" gives 0 and KIV_CODE_FIRST_CHARACTER at 0. */
KIV_API KivAnswer KivExplainEsteIBAN(const char* text, size_t length, KivCodeFault* fault);

/** The part before the first "-" or ".", trimmed. Example: "RO49AAAA1B31-01" gives "RO49AAAA1B31". */
KIV_API KivLength KivExtrageIBANdinIBANCuAnalitic(const char* text, size_t length, char* buffer, size_t capacity);

/** The text without its first four characters that are not blanks. Example: "RO49 AAAA 1B31" gives "AAAA 1B31". */
KIV_API KivLength KivEliminaCoduriDinIBAN(const char* text, size_t length, char* buffer, size_t capacity);

/**
 * Whether the sixth digit of the locality code is its check digit. Fails with KIV_ERROR_CONVERSION where one of the
 * first six characters is not a digit. Example: "179132" gives 1, "54976" gives 0, "17A132" gives -2.
 */
KIV_API KivAnswer KivValideazaSIRUTA(const char* code, size_t length);

/**
 * The same answer, with the first fault of a code that is not valid; a character that is not a digit is one, not a
 * failure. Example: "17A132" gives 0 and KIV_CODE_CHARACTER at 2.
 */
KIV_API KivAnswer KivExplainValideazaSIRUTA(const char* code, size_t length, KivCodeFault* fault);

#ifdef __cplusplus
}
#endif

#endif
