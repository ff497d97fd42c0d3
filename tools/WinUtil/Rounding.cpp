#include "kivtools/WinUtil/Rounding.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "core/ExtendedPrecision.h"
#include "core/Numbers.h"

namespace kiv {
namespace {

/// Settles exact halves upward.
constexpr long double kNudge = 1e-11L;

/// 10^0 to 10^128; exact as far as the mantissa goes (10^27 on x86).
constexpr auto kPowersOfTen = [] {
  std::array<long double, 129> powers{};
  long double power = 1;
  for (long double& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

[[noreturn]] void Refuse(TextView operation, double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  throw Error(Text(operation) + ": rezultatul pentru " + Text(digits.data(), end) + " nu incape in 64 de biti");
}

/// Whether the value is a number. By its bits, because a comparison may trap in hosts that let the processor trap.
bool IsFinite(double value) {
  constexpr unsigned kExponent = 0x7FF;
  return ((std::bit_cast<std::uint64_t>(value) >> 52U) & kExponent) != kExponent;
}

/// The number of multiples of 10^digit nearest to `value` plus the nudge, halves to even.
std::int64_t Multiples(TextView operation, double value, std::int8_t digit) {
  if (!IsFinite(value)) {
    Refuse(operation, value);
  }
  const ExtendedPrecision extended;
  const volatile double source = value;
  const volatile long double sum = source + kNudge;
  // Powers with a positive exponent are exact, those with a negative one are not: so multiply instead.
  const auto power = static_cast<std::size_t>(std::abs(digit));
  const volatile long double multiples = digit < 0 ? sum * kPowersOfTen[power] : sum / kPowersOfTen[power];
  constexpr long double kTwoTo63 = 9223372036854775808.0L;
  if (!(multiples >= -kTwoTo63 && multiples < kTwoTo63)) {
    Refuse(operation, value);
  }
  const volatile std::int64_t rounded = std::llrint(multiples);
  return rounded;
}

}  // namespace

double SmartRound(double value) {
  return static_cast<double>(Multiples("SmartRound", value, 0));
}

double SmartRoundTo(double value, std::int8_t digit) {
  const std::int64_t multiples = Multiples("SmartRoundTo", value, digit);
  // Where both numbers are exact as doubles, one operation gives the nearest double to the result.
  constexpr std::int64_t kMostExact = std::int64_t{1} << 53U;
  if (multiples >= -kMostExact && multiples <= kMostExact && digit >= -22 && digit <= 22) {
    const auto whole = static_cast<double>(multiples);
    const auto power = static_cast<double>(kPowersOfTen[static_cast<std::size_t>(std::abs(digit))]);
    return digit < 0 ? whole / power : whole * power;
  }
  // Else through decimal text, because a product in any type would be rounded twice.
  Text decimal;
  AppendDecimal(decimal, multiples);
  decimal.push_back('e');
  AppendDecimal(decimal, digit);
  double result = 0;
  std::from_chars(decimal.data(), decimal.data() + decimal.size(), result);
  return result;
}

}  // namespace kiv
