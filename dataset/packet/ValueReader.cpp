#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <optional>

#include "core/Calendar.h"
#include "dataset/packet/ShortValues.h"
#include "dataset/packet/ValueText.h"
#include "kivtools/Ascii.h"

namespace kiv::packet {

using store::Cell;

namespace {

void Put(Cell& cell, std::int64_t element) noexcept {
  cell.bits = static_cast<std::uint64_t>(element);
  cell.isNull = false;
}

/// A decimal number taken apart, as far as it is one.
struct Decimal {
  bool isNegative = false;
  bool hasLeadingZeros = false;
  std::string_view whole;
  std::string_view decimals;
  bool hasGroups = false;
};

bool AreAllDigits(std::string_view text) noexcept {
  return std::ranges::all_of(text, ascii::IsDigit<char>);
}

/// Whether "1.234.567" has its dots where thousands end.
bool AreGroups(std::string_view whole, char group) noexcept {
  const std::size_t first = whole.find(group);
  if (first == 0 || first > 3 || whole[0] == '0') {
    return false;
  }
  for (std::size_t at = first; at < whole.size(); at += 4) {
    const std::string_view digits = whole.substr(at + 1, 3);
    if (whole[at] != group || digits.size() != 3 || !AreAllDigits(digits)) {
      return false;
    }
  }
  return AreAllDigits(whole.substr(0, first));
}

std::optional<Decimal> TakeApart(std::string_view text, NumberForm form) noexcept {
  Decimal decimal;
  if (text.starts_with('-')) {
    decimal.isNegative = true;
    text.remove_prefix(1);
  }
  std::size_t end = 0;
  while (end < text.size() && (ascii::IsDigit(text[end]) || (form.group != '\0' && text[end] == form.group))) {
    decimal.hasGroups = decimal.hasGroups || text[end] == form.group;
    ++end;
  }
  decimal.whole = text.substr(0, end);
  if (decimal.whole.empty() || (decimal.hasGroups && !AreGroups(decimal.whole, form.group))) {
    return std::nullopt;
  }
  decimal.hasLeadingZeros = decimal.whole.size() > 1 && decimal.whole[0] == '0';
  if (end < text.size()) {
    decimal.decimals = text.substr(end + 1);
    if (text[end] != form.point || decimal.decimals.empty() || !AreAllDigits(decimal.decimals)) {
      return std::nullopt;
    }
  }
  return decimal;
}

/// The digits as a number, times a power of ten that has `zeros` of them; false where it does not fit.
bool Accumulate(std::string_view digits, std::uint64_t& number) noexcept {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 63U;
  for (const char character : digits) {
    if (!ascii::IsDigit(character)) {
      continue;  // between thousands
    }
    const auto digit = static_cast<unsigned>(character - '0');
    if (number > (kMost - digit) / 10) {
      return false;
    }
    number = number * 10 + digit;
  }
  return true;
}

bool PutSigned(std::uint64_t size, bool isNegative, Cell& cell) noexcept {
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 63U;
  if (size > kLimit || (size == kLimit && !isNegative)) {
    return false;
  }
  Put(cell, static_cast<std::int64_t>(isNegative ? 0 - size : size));
  return true;
}

bool ReadInteger(const Decimal& decimal, Cell& cell) noexcept {
  std::uint64_t size = 0;
  return decimal.decimals.empty() && Accumulate(decimal.whole, size) && PutSigned(size, decimal.isNegative, cell);
}

bool ReadAmount(const Decimal& decimal, Cell& cell) noexcept {
  constexpr std::string_view kZeros = "0000";
  const std::string_view kept = decimal.decimals.substr(0, kZeros.size());
  std::uint64_t size = 0;
  return decimal.decimals.find_first_not_of('0', kept.size()) == std::string_view::npos &&
         Accumulate(decimal.whole, size) && Accumulate(kept, size) && Accumulate(kZeros.substr(kept.size()), size) &&
         PutSigned(size, decimal.isNegative, cell);
}

bool FitsInteger(FieldType type, const Cell& cell) noexcept {
  const auto value = static_cast<std::int64_t>(cell.bits);
  return type == FieldType::Int16   ? value == static_cast<std::int16_t>(value)
         : type == FieldType::Int32 ? value == static_cast<std::int32_t>(value)
                                    : true;
}

bool ReadIntegerOf(FieldType type, std::string_view text, Cell& cell, NumberForm form) noexcept {
  const auto decimal = TakeApart(text, form);
  return decimal && ReadInteger(*decimal, cell) && FitsInteger(type, cell);
}

bool ReadAmountOf(std::string_view text, Cell& cell, NumberForm form) noexcept {
  const auto decimal = TakeApart(text, form);
  return decimal && ReadAmount(*decimal, cell);
}

bool ReadPlainDouble(const char* first, const char* last, Cell& cell) noexcept {
  double number = 0;
  const auto read = std::from_chars(first, last, number);
  if (read.ec != std::errc{} || read.ptr != last || std::isnan(number)) {
    return false;
  }
  Put(cell, std::bit_cast<std::int64_t>(number == 0 ? 0.0 : number));
  return true;
}

bool ReadDouble(std::string_view text, Cell& cell, NumberForm form) noexcept {
  if (form.point == '.') {
    return ReadPlainDouble(text.data(), text.data() + text.size(), cell);
  }
  // In the form that from_chars knows; no double is written with more digits than this.
  std::array<char, 400> plain{};
  if (text.size() > plain.size() || (text.find(form.group) != std::string_view::npos && !TakeApart(text, form))) {
    return false;
  }
  char* end = plain.data();
  for (const char character : text) {
    if (character != form.group) {
      *end++ = character == form.point ? '.' : character;
    }
  }
  return ReadPlainDouble(plain.data(), end, cell);
}

/// The number that so many digits are, -1 where they are none.
int Digits(std::string_view text, std::size_t from, std::size_t count) noexcept {
  int number = 0;
  for (std::size_t i = from; i < from + count; ++i) {
    if (!ascii::IsDigit(text[i])) {
      return -1;
    }
    number = number * 10 + (text[i] - '0');
  }
  return number;
}

/// 14:30:05, with milliseconds behind a point or without, or 14:30.
bool ReadTime(std::string_view text, std::int64_t& milliseconds) noexcept {
  const bool hasSeconds = text.size() > 5;
  if (text.size() < 5 || text[2] != ':' || (hasSeconds && (text.size() < 8 || text[5] != ':'))) {
    return false;
  }
  const int hour = Digits(text, 0, 2);
  const int minute = Digits(text, 3, 2);
  const int second = hasSeconds ? Digits(text, 6, 2) : 0;
  int fraction = 0;
  if (text.size() > 8) {
    if (text[8] != '.' || text.size() == 9 || text.size() > 12) {
      return false;
    }
    fraction = Digits(text, 9, text.size() - 9);
    for (std::size_t i = text.size(); i < 12 && fraction >= 0; ++i) {
      fraction *= 10;
    }
  }
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59 || fraction < 0) {
    return false;
  }
  milliseconds = ((hour * 60 + minute) * 60 + second) * std::int64_t{1000} + fraction;
  return true;
}

/// A day, then "T" or a blank and a time; a day alone is its midnight.
bool ReadMoment(std::string_view text, std::int64_t& milliseconds) noexcept {
  std::int64_t day = 0;
  std::int64_t time = 0;
  if (!ReadDay(text.substr(0, 10), day)) {
    return false;
  }
  if (text.size() > 10 && ((text[10] != 'T' && text[10] != ' ') || !ReadTime(text.substr(11), time))) {
    return false;
  }
  milliseconds = day * kMillisecondsPerDay + time;
  return true;
}

bool ReadGuid(std::string_view text, Cell& cell) noexcept {
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') {
    text = text.substr(1, 36);
  }
  if (text.size() != 36) {
    return false;
  }
  std::array<std::uint64_t, 2> halves{};
  for (unsigned i = 0; i < 32; ++i) {
    if (HasDash(i)) {
      if (text.front() != '-') {
        return false;
      }
      text.remove_prefix(1);
    }
    const char character = text.front();
    const char lower = static_cast<char>(character | 0x20);
    const bool isLetter = lower >= 'a' && lower <= 'f';
    if (!isLetter && !ascii::IsDigit(character)) {
      return false;
    }
    std::uint64_t& half = halves[i / 16];
    half = half << 4U | static_cast<unsigned>(isLetter ? lower - 'a' + 10 : character - '0');
    text.remove_prefix(1);
  }
  cell.bits = halves[0];
  cell.more = halves[1];
  cell.isNull = false;
  return true;
}

template <class Read>
bool PutRead(std::string_view text, Cell& cell, Read read) noexcept {
  std::int64_t element = 0;
  if (!read(text, element)) {
    return false;
  }
  Put(cell, element);
  return true;
}

}  // namespace

bool ReadValue(FieldType type, std::string_view text, Cell& cell, NumberForm form) noexcept {
  if (ReadShortValue(type, text, form.point, cell.bits)) {
    cell.isNull = false;
    return true;
  }
  switch (type) {
    case FieldType::Int16:
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return ReadIntegerOf(type, text, cell, form);
    case FieldType::Currency:
      return ReadAmountOf(text, cell, form);
    case FieldType::Double:
      return ReadDouble(text, cell, form);
    case FieldType::Time:
      return PutRead(text, cell, ReadTime);
    case FieldType::DateTime:
      return PutRead(text, cell, ReadMoment);
    case FieldType::Boolean:
      Put(cell, text == "1" || text == "true");
      return text == "1" || text == "0" || text == "true" || text == "false";
    case FieldType::Guid:
      return ReadGuid(text, cell);
    default:
      return false;
  }
}

Kind KindOf(std::string_view text, NumberForm form) noexcept {
  if (const auto decimal = TakeApart(text, form)) {
    Cell cell;
    const bool isCode =
        decimal->hasLeadingZeros || (decimal->isNegative && decimal->whole == "0" && decimal->decimals.empty());
    if (!isCode && ReadInteger(*decimal, cell)) {
      return Kind::Integer;
    }
    return !isCode && ReadAmount(*decimal, cell) ? Kind::Amount : Kind::Text;
  }
  std::int64_t day = 0;
  return ReadDay(text, day) ? Kind::Date : Kind::Text;
}

}  // namespace kiv::packet
