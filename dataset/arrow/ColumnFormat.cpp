#include "dataset/arrow/ColumnFormat.h"

#include <array>
#include <charconv>

#include "core/Calendar.h"

namespace kiv::arrow {
namespace {

struct Known {
  std::string_view format;
  ColumnFormat meaning;
};

constexpr std::array kKnown = {
    Known{"c", {Elements::Integer, 1, true, 1, 1, FieldType::Int16}},
    Known{"C", {Elements::Integer, 1, false, 1, 1, FieldType::Int16}},
    Known{"s", {Elements::Integer, 2, true, 1, 1, FieldType::Int16}},
    Known{"S", {Elements::Integer, 2, false, 1, 1, FieldType::Int32}},
    Known{"i", {Elements::Integer, 4, true, 1, 1, FieldType::Int32}},
    Known{"I", {Elements::Integer, 4, false, 1, 1, FieldType::Int64}},
    Known{"l", {Elements::Integer, 8, true, 1, 1, FieldType::Int64}},
    Known{"L", {Elements::Integer, 8, false, 1, 1, FieldType::Int64}},
    Known{"f", {Elements::Real, 4, true, 1, 1, FieldType::Double}},
    Known{"g", {Elements::Real, 8, true, 1, 1, FieldType::Double}},
    Known{"b", {Elements::Bit, 0, true, 1, 1, FieldType::Boolean}},
    Known{"tdD", {Elements::Day, 4, true, 1, 1, FieldType::Date}},
    Known{"tdm", {Elements::Day, 8, true, 1, kMillisecondsPerDay, FieldType::Date}},
    Known{"tts", {Elements::Time, 4, true, 1000, 1, FieldType::Time}},
    Known{"ttm", {Elements::Time, 4, true, 1, 1, FieldType::Time}},
    Known{"ttu", {Elements::Time, 8, true, 1, 1000, FieldType::Time}},
    Known{"ttn", {Elements::Time, 8, true, 1, 1'000'000, FieldType::Time}},
    Known{"tss:", {Elements::Moment, 8, true, 1000, 1, FieldType::DateTime}},
    Known{"tsm:", {Elements::Moment, 8, true, 1, 1, FieldType::DateTime}},
    Known{"tsu:", {Elements::Moment, 8, true, 1, 1000, FieldType::DateTime}},
    Known{"tsn:", {Elements::Moment, 8, true, 1, 1'000'000, FieldType::DateTime}},
    Known{"w:16", {Elements::Guid, 16, true, 1, 1, FieldType::Guid}},
    Known{"u", {Elements::Text, 4, true, 1, 1, FieldType::Text}},
    Known{"U", {Elements::Text, 8, true, 1, 1, FieldType::Text}},
    Known{"z", {Elements::Bytes, 4, true, 1, 1, FieldType::Blob}},
    Known{"Z", {Elements::Bytes, 8, true, 1, 1, FieldType::Blob}},
};

/// "d:19,4", behind which the 128 bits may be said.
std::optional<ColumnFormat> ParseDecimal(std::string_view text) noexcept {
  constexpr std::array<std::int64_t, 5> kToTenThousandths = {10'000, 1'000, 100, 10, 1};
  const auto number = [&text](std::size_t& value) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = read.ec == std::errc{};
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    return isNumber;
  };
  const auto comma = [&text] {
    const bool isThere = text.starts_with(',');
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
  };
  std::size_t digits = 0;
  std::size_t places = 0;
  std::size_t bits = 128;
  if (!number(digits) || !comma() || !number(places) || (comma() && !number(bits)) || !text.empty()) {
    return std::nullopt;
  }
  if (bits != 128 || places >= kToTenThousandths.size()) {
    return std::nullopt;
  }
  return ColumnFormat{Elements::Decimal, 16, true, kToTenThousandths[places], 1, FieldType::Currency};
}

}  // namespace

bool ColumnFormat::Fits(FieldType wanted, bool hasTenThousandths) const noexcept {
  switch (wanted) {
    case FieldType::Int16:
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return elements == Elements::Integer;
    case FieldType::Currency:
      return elements == Elements::Decimal || (elements == Elements::Integer && hasTenThousandths);
    case FieldType::Text:
    case FieldType::WideText:
    case FieldType::Memo:
      return elements == Elements::Text;
    default:
      return type == wanted;
  }
}

std::optional<ColumnFormat> ParseFormat(std::string_view format) noexcept {
  if (format.starts_with("d:")) {
    return ParseDecimal(format.substr(2));
  }
  for (const Known& known : kKnown) {
    if (known.format == format) {
      return known.meaning;
    }
  }
  return std::nullopt;
}

}  // namespace kiv::arrow
