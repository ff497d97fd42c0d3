#include "kivtools/WinUtil/PersonalNumericCode.h"

#include <algorithm>
#include <array>

#include "core/Calendar.h"
#include "core/PersonalNumericCode.h"
#include "kivtools/Ascii.h"

namespace kiv {

std::atomic<std::uint32_t> CnpFailedCount{0};
std::atomic<std::uint32_t> CnpPassedCount{0};

namespace {

constexpr std::size_t kLength = 13;
constexpr std::array<std::uint32_t, kLength - 1> kWeights = {2, 7, 9, 1, 4, 6, 3, 5, 8, 2, 7, 9};

/// The year of the date check. It does not ask the first digit for the century, and the texts made from a code do:
/// hosts hold codes that pass by this rule only, so the two stay different.
constexpr int YearOfDateCheck(TextView code) {
  const int year = cnp::TwoDigits(code, 1);
  return year < 5 ? 2000 + year : 1900 + year;
}

/// The first rule that a code breaks. For CodeRule::CheckDigit, with the digit that would be right.
struct Verdict {
  CodeRule rule;
  std::uint32_t control = 0;
};

/// What the check and its explanation share, so that they cannot disagree.
inline Verdict Judge(TextView code) noexcept {
  if (code.size() != kLength) {
    return {CodeRule::Length};
  }
  const std::uint32_t control = cnp::Digit(code[kLength - 1]);
  std::uint32_t sum = 0;
  bool onlyDigits = control <= 9;
  for (std::size_t i = 0; i < kWeights.size(); ++i) {
    const std::uint32_t digit = cnp::Digit(code[i]);
    onlyDigits &= digit <= 9;
    sum += digit * kWeights[i];
  }
  const char first = code[0];
  if (!onlyDigits || (first != '1' && first != '2' && first != '5' && first != '6')) {
    return {onlyDigits ? CodeRule::FirstCharacter : CodeRule::Character};
  }
  const int day = cnp::TwoDigits(code, cnp::kDayAt);
  if (day < 1 || day > DaysInMonth(YearOfDateCheck(code), cnp::TwoDigits(code, cnp::kMonthAt))) {
    return {CodeRule::Date};
  }
  const std::uint32_t remainder = sum % 11;
  const std::uint32_t right = remainder == 10 ? 1 : remainder;
  return {control == right ? CodeRule::None : CodeRule::CheckDigit, right};
}

/// Where the digits of a month that does not exist begin, else those of the day.
std::size_t PlaceInDate(TextView code) noexcept {
  const std::int32_t month = cnp::TwoDigits(code, cnp::kMonthAt);
  return month >= 1 && month <= 12 ? cnp::kDayAt : cnp::kMonthAt;
}

void CountOne(std::atomic<std::uint32_t>& counter) noexcept {
  counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

}  // namespace

bool TestCNP(TextView code) noexcept {
  const bool valid = Judge(code).rule == CodeRule::None;
  CountOne(valid ? CnpPassedCount : CnpFailedCount);
  return valid;
}

CodeFault ExplainTestCNP(TextView code) noexcept {
  const Verdict verdict = Judge(code);
  CodeFault fault{CodeKind::Personal, verdict.rule};
  if (verdict.rule == CodeRule::Length) {
    fault.position = code.size();
    fault.expected = static_cast<std::int32_t>(kLength);
  } else if (verdict.rule == CodeRule::Character) {
    fault.position = static_cast<std::size_t>(std::ranges::find_if_not(code, ascii::IsDigit<char>) - code.begin());
  } else if (verdict.rule == CodeRule::Date) {
    fault.position = PlaceInDate(code);
  } else if (verdict.rule == CodeRule::CheckDigit) {
    fault.position = kLength - 1;
    fault.expected = static_cast<std::int32_t>(verdict.control);
  }
  return fault;
}

}  // namespace kiv
