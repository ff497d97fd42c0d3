#include "kivtools/WinUtil/PersonalNumericCode.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/Calendar.h"
#include "core/Numbers.h"
#include "kivtools/Ascii.h"
#include "kivtools/WinUtil/DateText.h"
#include "platform/Clock.h"
#include "tools/WinUtil/CnpCounters.h"

namespace kiv {

std::atomic<std::uint32_t> CnpFailedCount{0};
std::atomic<std::uint32_t> CnpPassedCount{0};

namespace {

constexpr std::size_t kLength = 13;
constexpr std::array<std::uint32_t, kLength - 1> kWeights = {2, 7, 9, 1, 4, 6, 3, 5, 8, 2, 7, 9};
constexpr std::int32_t kUnknownCentury = -1;
/// Where the digits of the birth date begin.
constexpr std::size_t kMonthAt = 3;
constexpr std::size_t kDayAt = 5;

constexpr std::uint32_t Digit(char character) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(character)) - '0';  // huge below '0'
}

/// The number that two digits of a code make.
constexpr std::int32_t TwoDigits(TextView code, std::size_t at) {
  return static_cast<std::int32_t>(Digit(code[at]) * 10 + Digit(code[at + 1]));
}

/// The year of the date check. It does not ask the first digit for the century, and the texts below do: hosts hold
/// codes that pass by this rule only, so the two stay different.
constexpr int YearOfDateCheck(TextView code) {
  const int year = TwoDigits(code, 1);
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
  const std::uint32_t control = Digit(code[kLength - 1]);
  std::uint32_t sum = 0;
  bool onlyDigits = control <= 9;
  for (std::size_t i = 0; i < kWeights.size(); ++i) {
    const std::uint32_t digit = Digit(code[i]);
    onlyDigits &= digit <= 9;
    sum += digit * kWeights[i];
  }
  const char first = code[0];
  if (!onlyDigits || (first != '1' && first != '2' && first != '5' && first != '6')) {
    return {onlyDigits ? CodeRule::FirstCharacter : CodeRule::Character};
  }
  const int day = TwoDigits(code, kDayAt);
  if (day < 1 || day > DaysInMonth(YearOfDateCheck(code), TwoDigits(code, kMonthAt))) {
    return {CodeRule::Date};
  }
  const std::uint32_t remainder = sum % 11;
  const std::uint32_t right = remainder == 10 ? 1 : remainder;
  return {control == right ? CodeRule::None : CodeRule::CheckDigit, right};
}

/// Where the digits of a month that does not exist begin, else those of the day.
std::size_t PlaceInDate(TextView code) noexcept {
  const std::int32_t month = TwoDigits(code, kMonthAt);
  return month >= 1 && month <= 12 ? kDayAt : kMonthAt;
}

void CountOne(std::atomic<std::uint32_t>& counter) noexcept {
  counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

constexpr std::int32_t Century(char first) {
  switch (first) {
    case '1':
    case '2':
      return 1900;
    case '5':
    case '6':
      return 2000;
    default:
      return kUnknownCentury;
  }
}

Text BirthDate(TextView code, const std::array<Text, 12>& monthNames) {
  if (!TestCNP(code)) {
    return "CNP incorect";
  }
  const std::int32_t century = Century(code[0]);
  if (century == kUnknownCentury) {
    return Text("CNP incepe cu ") + code[0];
  }
  Text text;
  AppendDecimal(text, TwoDigits(code, kDayAt));
  text.append(1, ' ').append(monthNames[static_cast<std::size_t>(TwoDigits(code, kMonthAt) - 1)]).append(1, ' ');
  AppendDecimal(text, century + TwoDigits(code, 1));
  return text;
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

std::int32_t AnulNasteriiDinCnp(TextView code) {
  // The message and the test do not agree on the length; hosts show the one and rely on the other.
  if (code.size() < 3) {
    throw Error("Codul numeric personal este eronat (are mai putin de 13 cifre) si nu pot extrage anul nasterii!");
  }
  return Century(code[0]) + ToInt32(code.substr(1, 2));
}

Text DataNasteriiDinCNP(TextView code) {
  return BirthDate(code, NumeLuna);
}

Text DataNasteriiDinCNP_scurt(TextView code) {
  return BirthDate(code, NumeLunaScurt);
}

std::int32_t VarstaDinCNP(TextView code) {
  if (!TestCNP(code)) {
    return 0;
  }
  const std::int32_t birthYear = Century(code[0]) + TwoDigits(code, 1);
  const std::int32_t age = platform::clock_service.Current().Now().Decode().year - birthYear;
  return age < 0 ? 0 : age;
}

}  // namespace kiv
