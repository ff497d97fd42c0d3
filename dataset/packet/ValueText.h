#pragma once

#include <cstddef>
#include <string_view>

#include "dataset/store/Cell.h"

/// Values of fixed width as the texts of CSV and XML: integers and amounts in plain decimal, doubles in the fewest
/// digits that read back, dates by ISO 8601, yes and no as 1 and 0, a Guid in braces. All of it is ASCII.
namespace kiv::packet {

/// How decimals are written. Romanian: "1.234,56".
struct NumberForm {
  char point = '.';
  char group = '\0';  ///< what may stand between thousands when a number is read; nothing is when one is written
};
inline constexpr NumberForm kPlainNumbers{};
inline constexpr NumberForm kRomanianNumbers{',', '.'};

/// The most that WriteValue writes.
inline constexpr std::size_t kMostValueText = 48;

/// Whether a "-" stands before that digit of a Guid.
constexpr bool HasDash(unsigned digit) noexcept {
  return digit == 8 || digit == 12 || digit == 16 || digit == 20;
}

/// Writes a value that is there and of fixed width; returns the end. Example: 1234.5 of a Currency is "1234.5".
char* WriteValue(char* out, FieldType type, const store::Cell& cell, char point = '.') noexcept;

/// Reads what WriteValue writes, and of dates the form 31.01.2026 too. False where the text is no value that a field of
/// the type can hold; an amount with more than four decimals is none.
bool ReadValue(FieldType type, std::string_view text, store::Cell& cell, NumberForm form = kPlainNumbers) noexcept;

/// What a text is when nobody has said its type: the first of them that it fits. A number with zeros in front is a
/// code, whose zeros count.
enum class Kind : unsigned char { Integer = 1, Amount = 2, Date = 4, Text = 8 };
Kind KindOf(std::string_view text, NumberForm form) noexcept;

}  // namespace kiv::packet
