#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <random>

#include "core/Calendar.h"
#include "dataset/packet/Base64.h"
#include "dataset/packet/ValueText.h"

namespace kiv {
namespace {

using packet::Kind;
using packet::kPlainNumbers;
using packet::kRomanianNumbers;
using store::Cell;

std::string Written(FieldType type, const Cell& cell, char point = '.') {
  std::array<char, packet::kMostValueText> text{};
  return {text.data(), packet::WriteValue(text.data(), type, cell, point)};
}

/// What the text becomes when it is read and written again, "-" where it is refused.
std::string Again(FieldType type, std::string_view text, packet::NumberForm form) {
  Cell cell;
  return packet::ReadValue(type, text, cell, form) && !cell.isNull ? Written(type, cell, form.point) : "-";
}

TEST(ValueText, IsReadAndWrittenInOneForm) {
  const struct {
    FieldType type;
    std::string_view text, plain, romanian;
  } kCases[] = {
      {FieldType::Int64, "0", "0", "0"},
      {FieldType::Int64, "007", "7", "7"},
      {FieldType::Int64, "-9223372036854775808", "-9223372036854775808", "-9223372036854775808"},
      {FieldType::Int64, "9223372036854775808", "-", "-"},
      {FieldType::Int64, "-9223372036854775809", "-", "-"},
      {FieldType::Int64, "99999999999999999999999999", "-", "-"},
      {FieldType::Int64, "1.234.567", "-", "1234567"},
      {FieldType::Int64, "1.23.4567", "-", "-"},
      {FieldType::Int64, "1234.567", "-", "-"},
      {FieldType::Int64, ".123", "-", "-"},
      {FieldType::Int64, "", "-", "-"},
      {FieldType::Int64, "-", "-", "-"},
      {FieldType::Int64, "+5", "-", "-"},
      {FieldType::Int64, "5 ", "-", "-"},
      {FieldType::Int16, "32767", "32767", "32767"},
      {FieldType::Int16, "32768", "-", "-"},
      {FieldType::Int16, "-32769", "-", "-"},
      {FieldType::Int32, "-2147483648", "-2147483648", "-2147483648"},
      {FieldType::Int32, "2147483648", "-", "-"},
      {FieldType::Currency, "1234.5", "1234.5", "-"},
      {FieldType::Currency, "1.234", "1.234", "1234"},
      {FieldType::Currency, "1.234,56", "-", "1234,56"},
      {FieldType::Currency, "-0,05", "-", "-0,05"},
      {FieldType::Currency, "1.00010", "1.0001", "-"},
      {FieldType::Currency, "1.00001", "-", "-"},
      {FieldType::Currency, "1.", "-", "-"},
      {FieldType::Currency, ".5", "-", "-"},
      {FieldType::Currency, "1234567.", "-", "-"},
      {FieldType::Currency, "1.2.3", "-", "-"},
      {FieldType::Currency, "12345.67.8", "-", "-"},
      {FieldType::Currency, "922337203685477.5807", "922337203685477.5807", "-"},
      {FieldType::Currency, "922337203685477.5808", "-", "-"},
      {FieldType::Currency, "-922337203685477.5808", "-922337203685477.5808", "-"},
      {FieldType::Double, "0.1", "0.1", "-"},
      {FieldType::Double, "-0", "0", "0"},
      {FieldType::Double, "1e300", "1e+300", "1e+300"},
      {FieldType::Double, "2,5", "-", "2,5"},
      {FieldType::Double, "1.234,5", "-", "1234,5"},
      {FieldType::Double, "12.34,5", "-", "-"},
      {FieldType::Double, "inf", "inf", "inf"},
      {FieldType::Double, "nan", "-", "-"},
      {FieldType::Double, "1e999", "-", "-"},
      {FieldType::Double, "5x", "-", "-"},
      {FieldType::Date, "2024-02-29", "2024-02-29", "2024-02-29"},
      {FieldType::Date, "29.02.2024", "2024-02-29", "2024-02-29"},
      {FieldType::Date, "2023-02-29", "-", "-"},
      {FieldType::Date, "0001-01-01", "0001-01-01", "0001-01-01"},
      {FieldType::Date, "0000-12-31", "-", "-"},
      {FieldType::Date, "31.12.9999", "9999-12-31", "9999-12-31"},
      {FieldType::Date, "2024-13-01", "-", "-"},
      {FieldType::Date, "2024-1-01", "-", "-"},
      {FieldType::Date, "2024/01/01", "-", "-"},
      {FieldType::Date, "2024-01-00", "-", "-"},
      {FieldType::Date, "2024-0:-01", "-", "-"},
      {FieldType::Time, "14:05", "14:05:00", "14:05:00"},
      {FieldType::Time, "23:59:59.9", "23:59:59.900", "23:59:59.900"},
      {FieldType::Time, "23:59:59.", "-", "-"},
      {FieldType::Time, "00:00:00.0005", "-", "-"},
      {FieldType::Time, "24:00:00", "-", "-"},
      {FieldType::Time, "12:60", "-", "-"},
      {FieldType::Time, "12:00:60", "-", "-"},
      {FieldType::Time, "12:00:", "-", "-"},
      {FieldType::DateTime, "1899-12-29T06:00", "1899-12-29T06:00:00", "1899-12-29T06:00:00"},
      {FieldType::DateTime, "31.01.2026 23:00:00.001", "2026-01-31T23:00:00.001", "2026-01-31T23:00:00.001"},
      {FieldType::DateTime, "2026-01-31", "2026-01-31T00:00:00", "2026-01-31T00:00:00"},
      {FieldType::DateTime, "2026-01-31T", "-", "-"},
      {FieldType::DateTime, "2026-01-31x12:00", "-", "-"},
      {FieldType::Boolean, "true", "1", "1"},
      {FieldType::Boolean, "0", "0", "0"},
      {FieldType::Boolean, "da", "-", "-"},
      {FieldType::Guid, "{00112233-4455-6677-8899-aABbCCddEEff}", "{00112233-4455-6677-8899-AABBCCDDEEFF}",
       "{00112233-4455-6677-8899-AABBCCDDEEFF}"},
      {FieldType::Guid, "00112233-4455-6677-8899-AABBCCDDEEFF", "{00112233-4455-6677-8899-AABBCCDDEEFF}",
       "{00112233-4455-6677-8899-AABBCCDDEEFF}"},
      {FieldType::Guid, "0011223304455-6677-8899-AABBCCDDEEFF", "-", "-"},
      {FieldType::Guid, "{00112233-4455-6677-8899-AABBCCDDEEFG}", "-", "-"},
      {FieldType::Text, "x", "-", "-"},
  };
  for (const auto& [type, text, plain, romanian] : kCases) {
    EXPECT_EQ(Again(type, text, kPlainNumbers), plain) << text;
    EXPECT_EQ(Again(type, text, kRomanianNumbers), romanian) << text;
  }
}

TEST(ValueText, EveryValueReadsBackAsItWas) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 50'000; ++i) {
    const auto bits = random() >> (random() % 64);
    const auto signedBits = static_cast<std::int64_t>(random() % 2 == 0 ? bits : 0 - bits);
    const struct {
      FieldType type;
      std::int64_t value;
    } kValues[] = {{FieldType::Int64, signedBits},
                   {FieldType::Currency, signedBits},
                   {FieldType::Date, kFirstDayNumber + static_cast<std::int64_t>(bits % 3'652'059)},
                   {FieldType::Time, static_cast<std::int64_t>(bits % kMillisecondsPerDay)},
                   {FieldType::DateTime, signedBits % 50'000'000'000'000},
                   {FieldType::Double, std::bit_cast<std::int64_t>(static_cast<double>(signedBits) / 1000.0 + 1)},
                   {FieldType::Guid, signedBits}};
    for (const auto& [type, value] : kValues) {
      const Cell cell{
          .bits = static_cast<std::uint64_t>(value), .more = type == FieldType::Guid ? bits : 0, .isNull = false};
      Cell read;
      ASSERT_TRUE(packet::ReadValue(type, Written(type, cell), read, kPlainNumbers)) << Written(type, cell);
      ASSERT_TRUE(store::AreEqual(type, cell, read)) << Written(type, cell);
    }
  }
}

TEST(ValueText, NumbersOfEveryLengthAreThoseOfTheStandardLibrary) {
  std::mt19937_64 random(11);
  const auto digits = [&](std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i <= random() % most; ++i) {
      text += static_cast<char>('0' + (random() % 3 == 0 ? 0 : random() % 10));
    }
    return text;
  };
  for (int i = 0; i < 50'000; ++i) {
    const std::string whole = (random() % 2 == 0 ? "-" : "") + digits(20);
    const std::string decimals = random() % 4 == 0 ? "" : digits(17);
    std::string text = whole + (decimals.empty() ? "" : ".") + decimals;
    const std::string_view beyond = std::string_view(decimals).substr(std::min<std::size_t>(decimals.size(), 4));
    const std::string units = whole + (decimals + "0000").substr(0, 4);
    double number = 0;
    std::int64_t integer = 0;
    std::int64_t amount = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isInteger =
        decimals.empty() && std::from_chars(&*whole.begin(), &*whole.end(), integer).ec == std::errc{};
    const bool isAmount = beyond.find_first_not_of('0') == std::string_view::npos &&
                          std::from_chars(&*units.begin(), &*units.end(), amount).ec == std::errc{};
    for (const packet::NumberForm form : {kPlainNumbers, kRomanianNumbers}) {
      Cell cell;
      ASSERT_TRUE(packet::ReadValue(FieldType::Double, text, cell, form)) << text;
      ASSERT_EQ(cell.bits, std::bit_cast<std::uint64_t>(number + 0.0)) << text;
      ASSERT_EQ(packet::ReadValue(FieldType::Int64, text, cell, form), isInteger) << text;
      ASSERT_TRUE(!isInteger || static_cast<std::int64_t>(cell.bits) == integer) << text;
      ASSERT_EQ(packet::ReadValue(FieldType::Currency, text, cell, form), isAmount) << text;
      ASSERT_TRUE(!isAmount || static_cast<std::int64_t>(cell.bits) == amount) << text;
      std::ranges::replace(text, '.', ',');
    }
    // A byte beside the digits in the place of one.
    std::ranges::replace(text, ',', '.');
    std::size_t place = 0;
    while (text[place = static_cast<std::size_t>(random() % text.size())] < '0') {
    }
    text[place] = "/:\xB0 "[random() % 4U];
    for (const FieldType type : {FieldType::Int64, FieldType::Currency, FieldType::Double}) {
      Cell cell;
      ASSERT_FALSE(packet::ReadValue(type, text, cell)) << text;
    }
  }
}

TEST(ValueText, TheKindOfAText) {
  const struct {
    std::string_view text;
    Kind plain, romanian;
  } kCases[] = {
      {"0", Kind::Integer, Kind::Integer},
      {"-15", Kind::Integer, Kind::Integer},
      {"007", Kind::Text, Kind::Text},
      {"-0", Kind::Text, Kind::Text},
      {"0.5", Kind::Amount, Kind::Text},
      {"0,5", Kind::Text, Kind::Amount},
      {"00.5", Kind::Text, Kind::Text},
      {"1.234", Kind::Amount, Kind::Integer},
      {"1.00005", Kind::Text, Kind::Text},
      {"9223372036854775807", Kind::Integer, Kind::Integer},
      {"9223372036854775808", Kind::Text, Kind::Text},
      {"31.01.2026", Kind::Date, Kind::Date},
      {"2026-01-31", Kind::Date, Kind::Date},
      {"31.02.2026", Kind::Text, Kind::Text},
      {"RO49AAAA", Kind::Text, Kind::Text},
      {"1e5", Kind::Text, Kind::Text},
  };
  for (const auto& [text, plain, romanian] : kCases) {
    EXPECT_EQ(packet::KindOf(text, kPlainNumbers), plain) << text;
    EXPECT_EQ(packet::KindOf(text, kRomanianNumbers), romanian) << text;
  }
}

TEST(Base64, GoesBothWaysAndRefusesTheRest) {
  std::string bytes;
  for (int i = 0; i < 300; ++i) {
    std::string text;
    std::string read;
    packet::AppendBase64(text, bytes);
    EXPECT_EQ(text.size(), (bytes.size() + 2) / 3 * 4);
    EXPECT_TRUE(packet::AppendFromBase64(read, text) && read == bytes) << text;
    bytes += static_cast<char>(i * 7);
  }
  for (const std::string_view wrong :
       {"A", "AA", "AAA", "AB==", "AAB=", "AA=A", "AA=", "AA===", "=", "A===", "AAAA=", "AA-A", "A\0AA"}) {
    std::string read;
    EXPECT_FALSE(packet::AppendFromBase64(read, wrong)) << wrong;
  }
  std::string read;
  EXPECT_TRUE(packet::AppendFromBase64(read, " Y W\r\nI=\t=") == false);
  EXPECT_TRUE(packet::AppendFromBase64(read, " Y W\r\nI=\t") && read == "ab");
}

}  // namespace
}  // namespace kiv
