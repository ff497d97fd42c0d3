/// @file
/// Account numbers in IBAN form and SIRUTA locality codes.
#pragma once

#include "kivtools/Types.h"
#include "kivtools/WinUtil/CodeFaults.h"

namespace kiv {

/// Whether the account number's remainder modulo 97 is 1 (ISO 13616: the first four characters moved to the end,
/// letters as 10 to 35). Blanks are skipped wherever they are, lower case counts as upper case, and the first "IBAN"
/// in the text is passed over. Neither the length nor the country is looked at. Never throws, for any bytes; no memory
/// is allocated; any thread may call it.
///
///     ValideazaIBAN("RO49AAAA1B31007593840000")             // true
///     ValideazaIBAN("iban ro49 aaaa 1b31 0075 9384 0000")   // true
///     ValideazaIBAN("RO49-AAAA-1B31-0075-9384-0000")        // false: only letters, digits and blanks
///     ValideazaIBAN("101")                                  // true: rearranging so short a text leaves "01"
[[nodiscard]] KIV_API bool ValideazaIBAN(TextView account) noexcept;

/// What an account number's fault most probably is: a character that has no place in it, a length that no account has
/// (Romanian ones have 24 characters, others 15 to 34), else the check digits with those that would be right. Its rule
/// is CodeRule::None exactly where ValideazaIBAN() says yes; that neither looks at the length nor at the country, so
/// only what it refused is measured. Never throws, allocates nothing; any thread may call it.
///
///     ExplainValideazaIBAN("RO94AAAA1B31007593840000")   // {CodeKind::Account, CodeRule::CheckDigit, 2, 49}
///     ExplainValideazaIBAN("RO49AAAA1B3100759384000")    // {CodeKind::Account, CodeRule::Length, 23, 24}
[[nodiscard]] KIV_API CodeFault ExplainValideazaIBAN(TextView account) noexcept;

/// Whether the text, without blanks and control characters at both ends, begins with a letter and passes
/// ValideazaIBAN(). Never throws, for any bytes.
///
///     EsteIBAN("  RO49AAAA1B31007593840000\r\n")   // true
///     EsteIBAN("101")                              // false: begins with a digit
[[nodiscard]] KIV_API bool EsteIBAN(TextView text) noexcept;

/// The same for EsteIBAN(), which wants a letter in front first of all. Positions are those of the whole text.
///
///     ExplainEsteIBAN(" 101")   // {CodeKind::Account, CodeRule::FirstCharacter, 1, -1}
[[nodiscard]] KIV_API CodeFault ExplainEsteIBAN(TextView text) noexcept;

/// The account number of a text that goes on with an analytic code: the part before the first "-" or ".", trimmed.
/// Without either, the whole text, trimmed.
///
///     ExtrageIBANdinIBANCuAnalitic("RO49AAAA1B31007593840000-01")   // "RO49AAAA1B31007593840000"
[[nodiscard]] KIV_API Text ExtrageIBANdinIBANCuAnalitic(TextView text);

/// The text without its first four characters that are not blanks, and without the blanks among and before them;
/// trimmed.
///
///     EliminaCoduriDinIBAN("RO49 AAAA 1B31")   // "AAAA 1B31"
[[nodiscard]] KIV_API Text EliminaCoduriDinIBAN(TextView text);

/// Whether the sixth digit of a locality code is its check digit. Codes of fewer than six characters are read with
/// zeros in front; characters after the sixth are not looked at. A check digit of 0 or 1 is never right. Throws
/// ConversionError where one of the six is not a digit: it is the one check that does.
///
///     ValideazaSIRUTA("179132")   // true
///     ValideazaSIRUTA("1017")     // true, read as "001017"
///     ValideazaSIRUTA("54976")    // false
[[nodiscard]] KIV_API bool ValideazaSIRUTA(TextView code);

/// The first rule that the code breaks: digits, or the check digit (`expected` is -1 where no digit would do). Its rule
/// is CodeRule::None exactly where ValideazaSIRUTA() says yes; where that throws, it is CodeRule::Character. Never
/// throws, allocates nothing; any thread may call it.
///
///     ExplainValideazaSIRUTA("54976")    // {CodeKind::Locality, CodeRule::CheckDigit, 4, 5}
///     ExplainValideazaSIRUTA("17A132")   // {CodeKind::Locality, CodeRule::Character, 2, -1}
[[nodiscard]] KIV_API CodeFault ExplainValideazaSIRUTA(TextView code) noexcept;

}  // namespace kiv
