#include "kivtools/WinUtil/Variants.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "core/Numbers.h"

namespace kiv {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

/// Takes the digits at the front off `rest`; returns them.
TextView TakeDigits(TextView& rest) {
  std::size_t count = 0;
  while (count < rest.size() && ascii::IsDigit(rest[count])) {
    ++count;
  }
  const TextView digits = rest.substr(0, count);
  rest.remove_prefix(count);
  return digits;
}

/// A plain decimal number: leading blanks, a sign, digits, a point and decimals; all but one digit may be absent.
double TextToDouble(TextView text) {
  TextView rest = text.substr(std::min(text.find_first_not_of(' '), text.size()));
  const bool negative = rest.starts_with('-');
  if (negative || rest.starts_with('+')) {
    rest.remove_prefix(1);
  }
  const TextView number = rest;
  const TextView whole = TakeDigits(rest);
  TextView decimals;
  if (rest.starts_with('.')) {
    rest.remove_prefix(1);
    decimals = TakeDigits(rest);
  }
  double value = 0;
  const bool plain = rest.empty() && !(whole.empty() && decimals.empty());
  const auto failed = std::from_chars(number.data(), number.data() + number.size(), value, std::chars_format::fixed).ec;
  // Out of range is also what is too small to differ from zero.
  const bool tiny = whole.find_first_not_of('0') == TextView::npos;
  if (!plain || (failed != std::errc() && !tiny)) {
    throw ConversionError("\"" + Text(text) + "\" nu este un numar");
  }
  return negative ? -value : value;
}

double ToDouble(const Variant& value) {
  return std::visit(Overloaded{
                        [](Null) { return 0.0; },
                        [](bool flag) { return flag ? -1.0 : 0.0; },
                        [](Currency amount) { return static_cast<double>(amount.Raw()) / Currency::kPerUnit; },
                        [](DateTime moment) { return moment.Days(); },
                        [](const Text& text) { return TextToDouble(text); },
                        [](auto number) { return static_cast<double>(number); },
                    },
                    value);
}

/// The nearest integer, halves to even, whatever the rounding mode.
double RoundHalvesToEven(double value) {
  const double whole = std::trunc(value);
  const double fraction = std::abs(value - whole);
  const bool away = fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2) != 0);
  return away ? whole + (value < 0 ? -1 : 1) : whole;
}

Text Shown(const Variant& value) {
  if (const auto* const text = std::get_if<Text>(&value)) {
    return *text;
  }
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    return std::to_string(*number);
  }
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), ToDouble(value)).ptr;
  return {digits.data(), end};
}

}  // namespace

DateTime VarToDateDef(const Variant& value, DateTime defaultValue) {
  return std::holds_alternative<Null>(value) ? defaultValue : DateTime(ToDouble(value));
}

std::int32_t VarToIntDef(const Variant& value, std::int32_t defaultValue) {
  if (std::holds_alternative<Null>(value)) {
    return defaultValue;
  }
  const double rounded = RoundHalvesToEven(ToDouble(value));
  // The negated comparison also refuses not-a-number.
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max())) {
    throw ConversionError("VarToIntDef: " + Shown(value) + " nu incape in 32 de biti");
  }
  return static_cast<std::int32_t>(rounded);
}

}  // namespace kiv
