#pragma once

#include <array>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/Calendar.h"
#include "kivtools/dataset/Schema.h"

/// Numbers and days as most are written: not longer than 16 characters, whose digits are read eight at a time. The
/// first character is in the lowest byte of 64 bits, as the processors read them that the library is for.
namespace kiv::packet {

static_assert(std::endian::native == std::endian::little);

inline constexpr auto kDayZero = std::chrono::sys_days{std::chrono::December / 30 / 1899};

/// The character in all eight places.
constexpr std::uint64_t EightTimes(char character) noexcept {
  return 0x0101010101010101U * static_cast<unsigned char>(character);
}

/// The characters at that place.
template <class Word>
std::uint64_t LoadAt(const char* text) noexcept {
  Word word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// At most eight characters, the last one in the highest byte, behind zeros.
inline std::uint64_t LoadDigits(const char* text, std::size_t size) noexcept {
  if (size >= 8) {
    return LoadAt<std::uint64_t>(text);
  }
  const auto shift = static_cast<unsigned>(8 * size);
  const unsigned unused = 64 - shift;
  if (size >= 4) {
    // Characters that both hold come to lie on themselves.
    return LoadAt<std::uint32_t>(text) << unused | LoadAt<std::uint32_t>(text + size - 4) << 32U |
           EightTimes('0') >> shift;
  }
  std::uint64_t word = EightTimes('0');
  for (std::size_t i = 0; i < size; ++i) {
    word = word >> 8U | LoadAt<std::uint8_t>(text + i) << 56U;
  }
  return word;
}

constexpr bool AreDigits(std::uint64_t characters) noexcept {
  return (((characters + EightTimes(0x7F - '9')) | (characters - EightTimes('0'))) & EightTimes('\x80')) == 0;
}

/// The number that eight digits are: first pairs of them, then fours, then all.
constexpr std::uint32_t NumberOf(std::uint64_t digits) noexcept {
  digits = ((digits & EightTimes(0xF)) * (1 + (10U << 8U))) >> 8U & 0x00FF00FF00FF00FFU;
  digits = (digits * (1 + (100U << 16U))) >> 16U & 0x0000FFFF0000FFFFU;
  return static_cast<std::uint32_t>((digits * (1 + (std::uint64_t{10'000} << 32U))) >> 32U);
}

/// At which of the eight places the character is first, 8 where it is at none.
constexpr unsigned PlaceOf(char character, std::uint64_t characters) noexcept {
  const std::uint64_t others = characters ^ EightTimes(character);
  return static_cast<unsigned>(std::countr_zero((others - EightTimes(1)) & ~others & EightTimes('\x80'))) / 8;
}

/// The other seven characters, and another one in front of them.
constexpr std::uint64_t Replace(unsigned place, std::uint64_t characters, std::uint64_t front) noexcept {
  const std::uint64_t before = (std::uint64_t{1} << (8 * place)) - 1;
  return (characters & (~before << 8U)) | (characters & before) << 8U | front;
}

/// A number that has no sign: all digits of it, and how many of them are behind the point.
struct ShortDecimal {
  std::uint64_t digits = 0;
  unsigned decimals = 0;
};

/// False for more than 16 characters and for what is not "12", or "12.34" where there may be a point.
inline bool ReadShortDecimal(std::string_view text, const char* point, ShortDecimal& decimal) noexcept {
  if (text.empty() || text.size() > 16) {
    return false;
  }
  const bool isLong = text.size() > 8;
  const std::size_t inFront = isLong ? text.size() - 8 : 0;
  std::uint64_t front = isLong ? LoadDigits(text.data(), inFront) : EightTimes('0');
  std::uint64_t back = LoadDigits(text.data() + inFront, text.size() - inFront);
  decimal.decimals = 0;
  if (point != nullptr && !AreDigits(back)) {
    const unsigned place = PlaceOf(*point, back);
    decimal.decimals = 7 - place;
    if (place >= 7 || decimal.decimals + 1 == text.size()) {
      return false;
    }
    back = Replace(place, back, front >> 56U);
    front = front << 8U | '0';
  } else if (point != nullptr && isLong) {
    if (const unsigned place = PlaceOf(*point, front); place < 8) {
      decimal.decimals = 15 - place;
      front = Replace(place, front, '0');
      if (decimal.decimals + 1 == text.size()) {
        return false;
      }
    }
  }
  if (!AreDigits(back) || (isLong && !AreDigits(front))) {
    return false;
  }
  decimal.digits = NumberOf(back) + (isLong ? NumberOf(front) * std::uint64_t{100'000'000} : 0);
  return true;
}

inline constexpr std::array<std::uint64_t, 16> kPowersOfTen = [] {
  std::array<std::uint64_t, 16> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) {
    powers[i] = powers[i - 1] * 10;
  }
  return powers;
}();

inline bool ReadShortInteger(FieldType type, std::string_view text, bool isNegative, std::uint64_t& bits) noexcept {
  ShortDecimal number;
  if (!ReadShortDecimal(text, nullptr, number)) {
    return false;
  }
  bits = isNegative ? 0 - number.digits : number.digits;
  return type != FieldType::Int32 || static_cast<std::int64_t>(bits) == static_cast<std::int32_t>(bits);
}

inline bool ReadShortAmount(std::string_view text, char point, bool isNegative, std::uint64_t& bits) noexcept {
  constexpr unsigned kDecimals = 4;
  constexpr std::size_t kMost = 14;
  ShortDecimal number;
  if (text.size() > kMost || !ReadShortDecimal(text, &point, number) || number.decimals > kDecimals) {
    return false;
  }
  const std::uint64_t amount = number.digits * kPowersOfTen[kDecimals - number.decimals];
  bits = isNegative ? 0 - amount : amount;
  return true;
}

inline bool ReadShortDouble(std::string_view text, char point, bool isNegative, std::uint64_t& bits) noexcept {
  // Fifteen digits and a power of ten are exact as doubles, so that their quotient is the nearest one to the number; a
  // sixteenth takes the place of the point, and nothing is divided.
  ShortDecimal number;
  if (!ReadShortDecimal(text, &point, number)) {
    return false;
  }
  const auto size = static_cast<double>(static_cast<std::int64_t>(number.digits)) /
                    static_cast<double>(static_cast<std::int64_t>(kPowersOfTen[number.decimals]));
  bits = std::bit_cast<std::uint64_t>(isNegative && size != 0 ? -size : size);
  return true;
}

/// 2026-01-31 or 31.01.2026, which has no shorter or longer form.
inline bool ReadDay(std::string_view text, std::int64_t& day) noexcept {
  if (text.size() != 10) {
    return false;
  }
  const char* const at = text.data();
  const bool isIso = at[4] == '-' && at[7] == '-';
  if (!isIso && (at[2] != '.' || at[5] != '.')) {
    return false;
  }
  const std::uint64_t digits = LoadAt<std::uint32_t>(at + (isIso ? 0 : 6)) |
                               LoadAt<std::uint16_t>(at + (isIso ? 5 : 3)) << 32U |
                               LoadAt<std::uint16_t>(at + (isIso ? 8 : 0)) << 48U;
  const std::uint32_t number = NumberOf(digits);  // 20260131
  const auto year = static_cast<int>(number / 10'000);
  const unsigned month = number / 100 % 100;
  const unsigned dayOfMonth = number % 100;
  if (!AreDigits(digits) || year < 1 || dayOfMonth < 1 ||
      static_cast<int>(dayOfMonth) > DaysInMonth(year, static_cast<int>(month))) {
    return false;
  }
  const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{month},
                                         std::chrono::day{dayOfMonth}};
  day = (std::chrono::sys_days{date} - kDayZero).count();
  return true;
}

/// Reads most of what fields of these types hold. False for what is longer or has another form, and for what is no
/// value at all.
inline bool ReadShortValue(FieldType type, std::string_view text, char point, std::uint64_t& bits) noexcept {
  if (type == FieldType::Date) {
    std::int64_t day = 0;
    const bool isDay = ReadDay(text, day);
    bits = static_cast<std::uint64_t>(day);
    return isDay;
  }
  const bool isNegative = !text.empty() && text[0] == '-';
  text.remove_prefix(isNegative ? 1 : 0);
  switch (type) {
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return ReadShortInteger(type, text, isNegative, bits);
    case FieldType::Currency:
      return ReadShortAmount(text, point, isNegative, bits);
    case FieldType::Double:
      return ReadShortDouble(text, point, isNegative, bits);
    default:
      return false;
  }
}

}  // namespace kiv::packet
