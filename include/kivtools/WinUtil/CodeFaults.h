/// @file
/// Why an identifier is not valid. Beside each check there is an operation that explains it: ExplainTestCNP(),
/// ExplainTestCodFiscal(), ExplainValideazaIBAN(), ExplainEsteIBAN(), ExplainValideazaSIRUTA(). It finds a fault
/// exactly where the check says no, reads as far as the check does, and counts nothing.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// What the code was read as. A fiscal code of 13 digits is read as a personal code.
enum class CodeKind : std::uint8_t { Personal = 0, Fiscal = 1, Account = 2, Locality = 3 };

/// The rule that a code breaks first.
enum class CodeRule : std::uint8_t {
  None = 0,            ///< the code is valid
  Length = 1,          ///< there are too few or too many characters
  Character = 2,       ///< a character is not a digit (in accounts: neither a letter nor a digit nor a blank)
  FirstCharacter = 3,  ///< the first digit of a personal code, the first letter of an account
  Date = 4,            ///< the calendar does not have the month or the day
  CheckDigit = 5       ///< the check digit is another one, or two are in an account
};

/// The languages of CodeFaultText().
enum class MessageLanguage : std::uint8_t { Romanian = 0, English = 1 };

/// A code's first fault.
struct CodeFault {
  CodeKind kind = CodeKind::Personal;
  CodeRule rule = CodeRule::None;
  /// Where, in bytes from 0: the character, the first one of the month or the day, the (first) check digit. For
  /// CodeRule::Length the characters that there are; those of an account without blanks and "IBAN".
  std::size_t position = 0;
  /// CodeRule::CheckDigit: what would be right (0 to 9, in an account 2 to 98), -1 where no digit is.
  /// CodeRule::Length: the nearest length that would be right. Else -1.
  std::int32_t expected = -1;

  friend bool operator==(const CodeFault&, const CodeFault&) = default;
};

/// The fault as a part of a sentence, without a full stop; positions are counted from 1. "codul este valid" or "the
/// code is valid" for none. Throws Error for a kind, a rule or a language that does not exist. Any thread may call it.
///
///     CodeFaultText(ExplainTestCNP("1800101221145"))   // "cifra de control (caracterul 13) ar trebui sa fie 4"
///     CodeFaultText(ExplainTestCNP("1801301221144"), MessageLanguage::English)   // "no such month (character 4)"
[[nodiscard]] KIV_API Text CodeFaultText(const CodeFault& fault, MessageLanguage language = MessageLanguage::Romanian);

}  // namespace kiv
