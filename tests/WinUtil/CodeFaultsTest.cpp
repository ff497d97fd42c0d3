#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "Expect.h"
#include "WinUtil/CodeFaultRules.h"
#include "core/PersonalNumericCode.h"
#include "kivtools/WinUtil.h"

namespace kiv {
namespace {

using namespace std::literals;
using Explanation = CodeFault (*)(TextView);

TEST(CodeFaults, FirstBrokenRuleAndItsSentence) {
  const struct {
    Explanation explain;
    TextView code;
    CodeFault fault;
    TextView romanian;
    TextView english;
  } kCases[] = {
      {ExplainTestCNP, "1800101221144", {}, "codul este valid", "the code is valid"},
      {ExplainTestCNP,
       "180010122114",
       {CodeKind::Personal, CodeRule::Length, 12, 13},
       "lungimea este 12 in loc de 13",
       "the length is 12 instead of 13"},
      {ExplainTestCNP,
       "x8001o1221144",
       {CodeKind::Personal, CodeRule::Character, 0},
       "caracterul 1 nu este o cifra",
       "character 1 is not a digit"},
      {ExplainTestCNP,
       "380010122114x",
       {CodeKind::Personal, CodeRule::Character, 12},
       "caracterul 13 nu este o cifra",
       "character 13 is not a digit"},
      {ExplainTestCNP,
       "3801301221144",
       {CodeKind::Personal, CodeRule::FirstCharacter, 0},
       "prima cifra nu este 1, 2, 5 sau 6",
       "the first digit is not 1, 2, 5 or 6"},
      {ExplainTestCNP,
       "1801301221144",
       {CodeKind::Personal, CodeRule::Date, 3},
       "luna nu exista (caracterul 4)",
       "no such month (character 4)"},
      {ExplainTestCNP, "1800001221144", {CodeKind::Personal, CodeRule::Date, 3}, "", ""},
      {ExplainTestCNP, "1801200221144", {CodeKind::Personal, CodeRule::Date, 5}, "", ""},
      {ExplainTestCNP,
       "2030229123452",
       {CodeKind::Personal, CodeRule::Date, 5},
       "ziua nu exista (caracterul 6)",
       "no such day (character 6)"},
      {ExplainTestCNP,
       "1850505000090",
       {CodeKind::Personal, CodeRule::CheckDigit, 12, 1},
       "cifra de control (caracterul 13) ar trebui sa fie 1",
       "the check digit (character 13) should be 1"},
      {ExplainTestCodFiscal,
       "12",
       {CodeKind::Fiscal, CodeRule::Length, 2, 3},
       "lungimea este 2 in loc de 3 pana la 10 sau 13",
       "the length is 2 instead of 3 to 10 or 13"},
      {ExplainTestCodFiscal, "12345678901", {CodeKind::Fiscal, CodeRule::Length, 11, 10}, "", ""},
      {ExplainTestCodFiscal, "123456789012", {CodeKind::Fiscal, CodeRule::Length, 12, 13}, "", ""},
      {ExplainTestCodFiscal, "12345678901234", {CodeKind::Fiscal, CodeRule::Length, 14, 13}, "", ""},
      {ExplainTestCodFiscal, "RO12345674", {CodeKind::Fiscal, CodeRule::Character, 0}, "", ""},
      {ExplainTestCodFiscal, "1234567x", {CodeKind::Fiscal, CodeRule::Character, 7}, "", ""},
      {ExplainTestCodFiscal, "12345670", {CodeKind::Fiscal, CodeRule::CheckDigit, 7, 4}, "", ""},
      {ExplainTestCodFiscal, "12345674", {CodeKind::Fiscal}, "", ""},
      {ExplainTestCodFiscal, "1800101221145", {CodeKind::Personal, CodeRule::CheckDigit, 12, 4}, "", ""},
      {ExplainTestCodFiscal, "180010122114x", {CodeKind::Fiscal, CodeRule::Character, 12}, "", ""},
      {ExplainEsteIBAN, " iban RO49 AAAA 1B31 0075 9384 0000", {CodeKind::Account}, "", ""},
      {ExplainEsteIBAN,
       "\tIBAN RO 94 AAAA1B31007593840000",
       {CodeKind::Account, CodeRule::CheckDigit, 9, 49},
       "cifrele de control (caracterul 10) ar trebui sa fie 49",
       "the check digits (character 10) should be 49"},
      {ExplainEsteIBAN,
       "RO00AAAA1B31007593840016",
       {CodeKind::Account, CodeRule::CheckDigit, 2, 5},
       "",
       "the check digits (character 3) should be 05"},
      {ExplainEsteIBAN,
       "  101",
       {CodeKind::Account, CodeRule::FirstCharacter, 2},
       "primul caracter nu este o litera",
       "the first character is not a letter"},
      {ExplainEsteIBAN,
       " RO49-AAAA",
       {CodeKind::Account, CodeRule::Character, 5},
       "caracterul 6 nu este litera sau cifra",
       "character 6 is neither a letter nor a digit"},
      {ExplainEsteIBAN,
       " ro49 AAAA1B31 0075 9384 000",
       {CodeKind::Account, CodeRule::Length, 23, 24},
       "lungimea este 23 in loc de 24",
       "the length is 23 instead of 24"},
      {ExplainEsteIBAN,
       "GB82WEST123456",
       {CodeKind::Account, CodeRule::Length, 14, 15},
       "lungimea este 14 in loc de 15 pana la 34",
       "the length is 14 instead of 15 to 34"},
      {ExplainEsteIBAN, "GB82WEST1234567", {CodeKind::Account, CodeRule::CheckDigit, 2, 25}, "", ""},
      {ExplainEsteIBAN, "R", {CodeKind::Account, CodeRule::Length, 1, 15}, "", ""},
      {ExplainEsteIBAN, " \r\n", {CodeKind::Account, CodeRule::Length, 0, 15}, "", ""},
      {ExplainValideazaIBAN, "IBAN", {CodeKind::Account, CodeRule::Length, 0, 15}, "", ""},
      {ExplainValideazaIBAN, "101", {CodeKind::Account}, "", ""},
      {ExplainValideazaSIRUTA, "54975", {CodeKind::Locality}, "", ""},
      {ExplainValideazaSIRUTA, "54976", {CodeKind::Locality, CodeRule::CheckDigit, 4, 5}, "", ""},
      {ExplainValideazaSIRUTA, "1791310", {CodeKind::Locality, CodeRule::CheckDigit, 5, 2}, "", ""},
      {ExplainValideazaSIRUTA,
       "000000",
       {CodeKind::Locality, CodeRule::CheckDigit, 5},
       "nicio cifra de control nu se potriveste (caracterul 6)",
       "no check digit fits (character 6)"},
      {ExplainValideazaSIRUTA, "17A13x", {CodeKind::Locality, CodeRule::Character, 2}, "", ""},
      {ExplainValideazaSIRUTA,
       "",
       {CodeKind::Locality, CodeRule::Length, 0, 1},
       "lungimea este 0 in loc de 1 pana la 6",
       "the length is 0 instead of 1 to 6"},
  };
  for (const auto& [explain, code, fault, romanian, english] : kCases) {
    const CodeFault found = explain(code);
    EXPECT_EQ(found, fault) << code << ": " << CodeFaultText(found, MessageLanguage::English);
    if (!romanian.empty()) {
      EXPECT_EQ(CodeFaultText(found), romanian);
    }
    if (!english.empty()) {
      EXPECT_EQ(CodeFaultText(found, MessageLanguage::English), english);
    }
  }
}

/// Something like a code of any kind, valid about as often as not, then damaged.
Text RandomCode(std::mt19937& random) {
  static constexpr TextView kGood[] = {"1800101221144", "12345674",  "RO49AAAA1B31007593840000",
                                       "54975",         "121212125", "GB82 WEST 1234 5698 7654 32"};
  Text code(kGood[random() % std::size(kGood)]);
  for (std::uint32_t changes = random() % 4; changes > 0; --changes) {
    const std::size_t at = random() % (code.size() + 1);
    switch (random() % 5) {
      case 0:
        code.insert(at, 1, "0179 AIBNaz-\t\xFF"[random() % 14]);
        break;
      case 1:
        code.insert(at, random() % 2 == 0 ? "IBAN" : "RO");
        break;
      case 2:
        code.erase(at, random() % 12);
        break;
      default:
        if (at < code.size()) {
          code[at] = static_cast<char>('0' + random() % 10);
        }
    }
  }
  return code;
}

TEST(CodeFaults, AgreeWithTheChecksAndNameWhatWouldBeRight) {
  std::mt19937 random(14);
  std::size_t faults[6] = {};
  for (int i = 0; i < 200'000; ++i) {
    const Text code = RandomCode(random);
    ASSERT_EQ(plain::FirstDisagreement(code), "") << '"' << code << '"';
    ++faults[static_cast<std::size_t>(ExplainTestCodFiscal(code).rule)];
  }
  for (const std::size_t count : faults) {
    EXPECT_GT(count, 100U) << "each rule has been met";
  }
}

TEST(CodeFaults, ExplainingCountsNothing) {
  const std::uint32_t failed = CnpFailedCount;
  const std::uint32_t passed = CnpPassedCount;
  std::ignore = ExplainTestCNP("1800101221144");
  std::ignore = ExplainTestCodFiscal("1800101221145");
  EXPECT_EQ(CnpFailedCount, failed);
  EXPECT_EQ(CnpPassedCount, passed);
}

TEST(CodeFaults, WhatDoesNotExistIsRefusedByItsNumber) {
  ExpectError<Error>([] { return CodeFaultText({}, static_cast<MessageLanguage>(2)); },
                     "CodeFaultText: limba 2 nu exista");
  ExpectError<Error>([] { return CodeFaultText({static_cast<CodeKind>(4)}); },
                     "CodeFaultText: felul de cod 4 nu exista");
  ExpectError<Error>(
      [] {
        return CodeFaultText({CodeKind::Fiscal, static_cast<CodeRule>(6)});
      },
      "CodeFaultText: regula 6 nu exista");
}

}  // namespace
}  // namespace kiv
