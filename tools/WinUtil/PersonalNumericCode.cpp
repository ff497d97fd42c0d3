#include "kivtools/WinUtil/PersonalNumericCode.h"

#include <array>
#include <cstddef>

#include "core/Numbers.h"
#include "core/PersonalNumericCode.h"
#include "kivtools/WinUtil/DateText.h"
#include "platform/Clock.h"

namespace kiv {
namespace {

constexpr std::int32_t kUnknownCentury = -1;

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
  AppendDecimal(text, cnp::TwoDigits(code, cnp::kDayAt));
  text.append(1, ' ')
      .append(monthNames[static_cast<std::size_t>(cnp::TwoDigits(code, cnp::kMonthAt) - 1)])
      .append(1, ' ');
  AppendDecimal(text, century + cnp::TwoDigits(code, 1));
  return text;
}

}  // namespace

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
  const std::int32_t birthYear = Century(code[0]) + cnp::TwoDigits(code, 1);
  const std::int32_t age = platform::clock_service.Current().Now().Decode().year - birthYear;
  return age < 0 ? 0 : age;
}

}  // namespace kiv
