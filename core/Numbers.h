#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "kivtools/Ascii.h"
#include "kivtools/Types.h"

/// Integers from Text and into Text.
namespace kiv {

using ascii::IsDigit;

/// The integer that a Text holds: optional leading blanks, an optional "+" or "-", then decimal digits only. Throws
/// ConversionError, naming the Text, for anything else and for a value out of range.
/// Example: `ToInt32(" -12")` is -12; `ToInt32("12 ")` throws.
std::int32_t ToInt32(TextView text);
/// The same in 64 bits.
std::int64_t ToInt64(TextView text);

/// The error of these conversions, for callers with a scanner of their own.
[[noreturn]] void RefuseInteger(TextView text);

/// Appends an integer in plain decimal. Example: -5 appends "-5".
template <class Integer>
void AppendDecimal(Text& text, Integer value) {
  std::array<char, std::numeric_limits<Integer>::digits10 + 3> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  text.append(digits.data(), end);
}

/// Appends an integer, "0" in front up to `width` characters. Example: 7 in width 2 appends "07".
template <class Integer>
void AppendPadded(Text& text, Integer value, std::size_t width) {
  std::array<char, std::numeric_limits<Integer>::digits10 + 3> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  const auto length = static_cast<std::size_t>(end - digits.data());
  text.append(width > length ? width - length : 0, '0');
  text.append(digits.data(), length);
}

}  // namespace kiv
