#include "kivtools/WinUtil/FiscalCode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "kivtools/Ascii.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"

namespace kiv {
namespace {

constexpr std::size_t kPersonalCodeLength = 13;
constexpr std::size_t kShortest = 3;
constexpr std::size_t kLongest = 10;
/// The weight of each digit counted from the right, the control digit left out.
constexpr TextView kWeights = "235712357";

constexpr std::uint32_t Digit(char character) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(character)) - '0';  // huge below '0'
}

bool OnlyDigits(TextView text) noexcept {
  bool onlyDigits = true;
  for (const char character : text) {
    onlyDigits &= Digit(character) <= 9;
  }
  return onlyDigits;
}

/// Whether a code that is not as long as a personal one breaks a rule, and the control digit that would be right. The
/// check and its explanation share it, so that they cannot disagree.
struct Verdict {
  CodeRule rule;
  std::uint32_t control = 0;
};

inline Verdict Judge(TextView code) noexcept {
  if (code.size() < kShortest || code.size() > kLongest) {
    return {CodeRule::Length};
  }
  const TextView body = code.substr(0, code.size() - 1);
  std::uint32_t sum = 0;
  bool onlyDigits = true;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const std::uint32_t digit = Digit(body[body.size() - 1 - i]);
    onlyDigits &= digit <= 9;
    sum += digit * Digit(kWeights[i]);
  }
  const std::uint32_t right = sum * 10 % 11 % 10;  // 10 becomes 0
  const std::uint32_t control = Digit(code.back());
  if (onlyDigits && control == right) {
    return {CodeRule::None};
  }
  return {onlyDigits && control <= 9 ? CodeRule::CheckDigit : CodeRule::Character, right};
}

/// The first character that is not a digit.
CodeFault FaultOfCharacter(TextView code) noexcept {
  const auto found = std::ranges::find_if_not(code, ascii::IsDigit<char>);
  return {CodeKind::Fiscal, CodeRule::Character, static_cast<std::size_t>(found - code.begin())};
}

/// The length that comes nearest to that of the code.
std::size_t NearestLength(std::size_t length) noexcept {
  return length < kShortest ? kShortest : length == kLongest + 1 ? kLongest : kPersonalCodeLength;
}

}  // namespace

bool TestCodFiscal(TextView code) noexcept {
  if (code.size() == kPersonalCodeLength) {
    return OnlyDigits(code) && TestCNP(code);
  }
  return Judge(code).rule == CodeRule::None;
}

CodeFault ExplainTestCodFiscal(TextView code) noexcept {
  if (code.size() == kPersonalCodeLength) {
    return OnlyDigits(code) ? ExplainTestCNP(code) : FaultOfCharacter(code);
  }
  const Verdict verdict = Judge(code);
  switch (verdict.rule) {
    case CodeRule::None:
      return {CodeKind::Fiscal};
    case CodeRule::Length:
      return {CodeKind::Fiscal, CodeRule::Length, code.size(), static_cast<std::int32_t>(NearestLength(code.size()))};
    case CodeRule::CheckDigit:
      return {CodeKind::Fiscal, CodeRule::CheckDigit, code.size() - 1, static_cast<std::int32_t>(verdict.control)};
    default:
      return FaultOfCharacter(code);
  }
}

}  // namespace kiv
