/// @file
/// Currency: an exact amount of money with four decimals.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <limits>

#include "kivtools/Ascii.h"
#include "kivtools/Export.h"

namespace kiv {

/// A signed count of ten-thousandths, from -922337203685477.5808 to 922337203685477.5807. It is never built from a
/// double, so no binary fraction can slip into a sum.
///
///     Currency::FromRaw(12345600) == 1234.56_lei   // true
class Currency {
 public:
  /// The ten-thousandths in one unit of the currency.
  static constexpr std::int64_t kPerUnit = 10'000;

  /// Zero.
  constexpr Currency() = default;

  /// The amount of that many ten-thousandths. Example: `Currency::FromRaw(5)` is 0.0005.
  [[nodiscard]] static constexpr Currency FromRaw(std::int64_t tenThousandths) noexcept {
    Currency amount;
    amount.raw_ = tenThousandths;
    return amount;
  }

  /// The count of ten-thousandths. Example: `(1.5_lei).Raw()` is 15000.
  [[nodiscard]] constexpr std::int64_t Raw() const noexcept { return raw_; }

  friend constexpr auto operator<=>(Currency, Currency) = default;

 private:
  std::int64_t raw_ = 0;
};

namespace detail {

/// Reads the characters of an amount literal; stops the compilation on anything that is not an exact amount.
template <char... Characters>
[[nodiscard]] constexpr Currency ExactAmount() {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  std::int64_t raw = 0;
  int decimals = -1;  // -1 until the point is seen
  const auto append = [&raw](int digit) {
    if (raw > (kMost - digit) / 10) {
      throw "the amount does not fit a Currency";  // reached only at compile time, where it is the error message
    }
    raw = raw * 10 + digit;
  };
  for (const char character : std::array{Characters...}) {
    if (character == '\'') {
      continue;
    }
    if (character == '.' && decimals < 0) {
      decimals = 0;
      continue;
    }
    if (!ascii::IsDigit(character)) {
      throw "an amount has decimal digits and one point only";
    }
    if (decimals == 4) {
      if (character != '0') {
        throw "an amount has four decimals at most";
      }
      continue;
    }
    append(character - '0');
    decimals += decimals < 0 ? 0 : 1;
  }
  for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i) {
    append(0);
  }
  return Currency::FromRaw(raw);
}

}  // namespace detail

namespace literals {

/// An exact amount, read at compile time from the digits themselves: up to four decimals, digit separators allowed.
/// What is not exact does not compile (`1.23456_lei`, `1e3_lei`, `0x10_lei`).
///
///     using namespace kiv::literals;
///     Currency amount = 1'234.56_lei;   // Raw() is 12345600
template <char... Characters>
consteval Currency operator""_lei() {
  return detail::ExactAmount<Characters...>();
}

}  // namespace literals
}  // namespace kiv
