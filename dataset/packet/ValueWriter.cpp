#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>

#include "core/Calendar.h"
#include "dataset/packet/ShortValues.h"
#include "dataset/packet/ValueText.h"

namespace kiv::packet {

using store::Cell;

namespace {

constexpr std::uint64_t kPerUnit = Currency::kPerUnit;

char* WritePadded(char* out, unsigned number, int width) noexcept {
  for (int i = width - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + number % 10);
    number /= 10;
  }
  return out + width;
}

template <class Number>
char* WriteNumber(char* out, Number number) noexcept {
  return std::to_chars(out, out + kMostValueText, number).ptr;
}

char* WriteAmount(char* out, std::int64_t raw, char point) noexcept {
  auto size = static_cast<std::uint64_t>(raw);
  if (raw < 0) {
    *out++ = '-';
    size = 0 - size;
  }
  out = WriteNumber(out, size / kPerUnit);
  auto decimals = static_cast<unsigned>(size % kPerUnit);
  if (decimals != 0) {
    *out++ = point;
    int width = 4;
    for (; decimals % 10 == 0; decimals /= 10) {
      --width;
    }
    out = WritePadded(out, decimals, width);
  }
  return out;
}

char* WriteDouble(char* out, double number, char point) noexcept {
  char* const end = WriteNumber(out, number);
  std::replace(out, end, '.', point);
  return end;
}

char* WriteDay(char* out, std::int64_t day) noexcept {
  const std::chrono::year_month_day date{kDayZero + std::chrono::days{day}};
  out = WritePadded(out, static_cast<unsigned>(static_cast<int>(date.year())), 4);
  *out++ = '-';
  out = WritePadded(out, static_cast<unsigned>(date.month()), 2);
  *out++ = '-';
  return WritePadded(out, static_cast<unsigned>(date.day()), 2);
}

char* WriteTime(char* out, unsigned milliseconds) noexcept {
  out = WritePadded(out, milliseconds / 3'600'000, 2);
  *out++ = ':';
  out = WritePadded(out, milliseconds / 60'000 % 60, 2);
  *out++ = ':';
  out = WritePadded(out, milliseconds / 1000 % 60, 2);
  if (milliseconds % 1000 != 0) {
    *out++ = '.';
    out = WritePadded(out, milliseconds % 1000, 3);
  }
  return out;
}

char* WriteMoment(char* out, std::int64_t milliseconds) noexcept {
  const std::int64_t time = (milliseconds % kMillisecondsPerDay + kMillisecondsPerDay) % kMillisecondsPerDay;
  out = WriteDay(out, (milliseconds - time) / kMillisecondsPerDay);
  *out++ = 'T';
  return WriteTime(out, static_cast<unsigned>(time));
}

char* WriteGuid(char* out, const Cell& cell) noexcept {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  *out++ = '{';
  for (unsigned i = 0; i < 32; ++i) {
    if (HasDash(i)) {
      *out++ = '-';
    }
    *out++ = kDigits[(i < 16 ? cell.bits : cell.more) >> (60 - 4 * (i % 16)) & 15U];
  }
  *out++ = '}';
  return out;
}

}  // namespace

char* WriteValue(char* out, FieldType type, const Cell& cell, char point) noexcept {
  const auto value = static_cast<std::int64_t>(cell.bits);
  switch (type) {
    case FieldType::Currency:
      return WriteAmount(out, value, point);
    case FieldType::Double:
      return WriteDouble(out, std::bit_cast<double>(cell.bits), point);
    case FieldType::Date:
      return WriteDay(out, value);
    case FieldType::Time:
      return WriteTime(out, static_cast<unsigned>(value));
    case FieldType::DateTime:
      return WriteMoment(out, value);
    case FieldType::Guid:
      return WriteGuid(out, cell);
    default:
      return WriteNumber(out, value);
  }
}

}  // namespace kiv::packet
