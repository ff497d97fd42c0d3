#pragma once

#include <algorithm>

#include "kivtools/Ascii.h"
#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "kivtools/WinUtil/FiscalCode.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"

/// What an explanation has to keep to for any bytes; tests and the fuzzer ask it.
namespace kiv::plain {

/// The code with the check digits that the explanation wants.
inline Text Corrected(TextView code, const CodeFault& fault) {
  Text right(code);
  if (fault.kind != CodeKind::Account) {
    right[fault.position] = static_cast<char>('0' + fault.expected);
    return right;
  }
  std::erase_if(right, [](char character) { return static_cast<unsigned char>(character) <= ' '; });
  Text upper = right;
  std::ranges::transform(upper, upper.begin(), ascii::ToUpper<char>);
  if (const std::size_t word = upper.find("IBAN"); word != Text::npos) {
    right.erase(word, 4);
  }
  right.at(2) = static_cast<char>('0' + fault.expected / 10);
  right.at(3) = static_cast<char>('0' + fault.expected % 10);
  return "IBAN" + right;  // so that no other one is passed over
}

/// Whether an explanation goes with the check's answer, and what it says holds; else what does not.
template <class Check>
const char* Disagreement(TextView code, CodeFault (*explain)(TextView), Check&& check) {
  const CodeFault fault = explain(code);
  if ((fault.rule == CodeRule::None) != check(code)) {
    return "a fault where the check says yes, or none where it says no";
  }
  if (CodeFaultText(fault).empty() || CodeFaultText(fault, MessageLanguage::English).empty()) {
    return "no sentence";
  }
  switch (fault.rule) {
    case CodeRule::None:
      return fault.position == 0 && fault.expected == -1 ? "" : "a valid code with a place";
    case CodeRule::Length:
      return fault.position <= code.size() && fault.expected != static_cast<std::int32_t>(fault.position)
                 ? ""
                 : "a length that is right";
    case CodeRule::CheckDigit:
      return fault.expected < 0 || check(Corrected(code, fault)) ? "" : "a check digit that is not right";
    default:
      return fault.position < code.size() && fault.expected == -1 ? "" : "a place outside of the code";
  }
}

/// The first disagreement of all five; empty for none.
inline Text FirstDisagreement(TextView code) {
  const auto locality = [](TextView text) {
    try {
      return ValideazaSIRUTA(text);
    } catch (const ConversionError&) {
      return false;
    }
  };
  for (const char* found :
       {Disagreement(code, ExplainTestCNP, TestCNP), Disagreement(code, ExplainTestCodFiscal, TestCodFiscal),
        Disagreement(code, ExplainValideazaIBAN, ValideazaIBAN), Disagreement(code, ExplainEsteIBAN, EsteIBAN),
        Disagreement(code, ExplainValideazaSIRUTA, locality)}) {
    if (*found != '\0') {
      return found;
    }
  }
  return {};
}

}  // namespace kiv::plain
