/// @file
/// The fiscal identification code.
#pragma once

#include "kivtools/Types.h"
#include "kivtools/WinUtil/CodeFaults.h"

namespace kiv {

/// Whether the code is valid: 3 to 10 digits with the right control digit at the end, or 13 digits that are a valid
/// personal numeric code (see TestCNP()). Digits only: the caller takes away blanks and the "RO" of VAT payers first.
/// Never throws, for any bytes; no memory is allocated. Any thread may call it.
///
///     TestCodFiscal("12345674")        // true
///     TestCodFiscal("1800101221144")   // true, as a personal numeric code
///     TestCodFiscal("RO12345674")      // false
[[nodiscard]] KIV_API bool TestCodFiscal(TextView code) noexcept;

/// The first rule that the code breaks, in the order: length, digits, control digit; for 13 digits what
/// ExplainTestCNP() finds. Its rule is CodeRule::None exactly where TestCodFiscal() says yes. Never throws, allocates
/// nothing; any thread may call it.
///
///     ExplainTestCodFiscal("12345670")     // {CodeKind::Fiscal, CodeRule::CheckDigit, 7, 4}
///     ExplainTestCodFiscal("RO12345674")   // {CodeKind::Fiscal, CodeRule::Character, 0, -1}
[[nodiscard]] KIV_API CodeFault ExplainTestCodFiscal(TextView code) noexcept;

}  // namespace kiv
