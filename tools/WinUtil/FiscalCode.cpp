#include "kivtools/WinUtil/FiscalCode.h"

#include <cstddef>
#include <cstdint>

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

}  // namespace

bool TestCodFiscal(TextView code) noexcept {
  if (code.size() == kPersonalCodeLength) {
    return OnlyDigits(code) && TestCNP(code);
  }
  if (code.size() < kShortest || code.size() > kLongest) {
    return false;
  }
  const TextView body = code.substr(0, code.size() - 1);
  std::uint32_t sum = 0;
  bool onlyDigits = true;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const std::uint32_t digit = Digit(body[body.size() - 1 - i]);
    onlyDigits &= digit <= 9;
    sum += digit * Digit(kWeights[i]);
  }
  // 10 becomes 0. A control character that is not a digit differs from both.
  return onlyDigits && sum * 10 % 11 % 10 == Digit(code.back());
}

}  // namespace kiv
