/**
 * @file
 * Account numbers and locality codes; see kivtools/WinUtil/BankAndLocalityCodes.h for the rules.
 */
#ifndef KIVTOOLS_C_BANK_AND_LOCALITY_CODES_H
#define KIVTOOLS_C_BANK_AND_LOCALITY_CODES_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Whether the account number's remainder modulo 97 is 1; blanks, lower case and a leading "IBAN" are accepted.
 * Example: "ro49 aaaa 1b31 0075 9384 0000" gives 1.
 */
KIV_API KivAnswer KivValideazaIBAN(const char* account, size_t length);

/** Whether the trimmed text begins with a letter and passes KivValideazaIBAN. Example: "101" gives 0. */
KIV_API KivAnswer KivEsteIBAN(const char* text, size_t length);

/** The part before the first "-" or ".", trimmed. Example: "RO49AAAA1B31-01" gives "RO49AAAA1B31". */
KIV_API KivLength KivExtrageIBANdinIBANCuAnalitic(const char* text, size_t length, char* buffer, size_t capacity);

/** The text without its first four characters that are not blanks. Example: "RO49 AAAA 1B31" gives "AAAA 1B31". */
KIV_API KivLength KivEliminaCoduriDinIBAN(const char* text, size_t length, char* buffer, size_t capacity);

/**
 * Whether the sixth digit of the locality code is its check digit. Fails with KIV_ERROR_CONVERSION where one of the
 * first six characters is not a digit. Example: "179132" gives 1, "54976" gives 0, "17A132" gives -2.
 */
KIV_API KivAnswer KivValideazaSIRUTA(const char* code, size_t length);

#ifdef __cplusplus
}
#endif

#endif
