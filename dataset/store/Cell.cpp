#include "dataset/store/Cell.h"

#include <bit>
#include <cmath>
#include <limits>

#include "core/Calendar.h"
#include "core/Numbers.h"
#include "dataset/store/SchemaData.h"

namespace kiv::store {
namespace {

constexpr std::size_t kMostBytes = 0x7FFFFFFF;

[[noreturn]] void Refuse(TextView owner, const FieldDef& field, TextView why) {
  throw Error(Text(owner) + ": campul " + Quoted(field.name) + " " + Text(why));
}

[[noreturn]] void RefuseKind(TextView owner, const FieldDef& field) {
  throw InvalidCast(Text(owner) + ": campul " + Quoted(field.name) + " este de tip " + TraitsOf(field.type).name +
                    " si nu primeste o valoare de alt fel");
}

[[noreturn]] void RefuseNumber(TextView owner, const FieldDef& field, TextView why, std::int64_t value) {
  Text message(why);
  AppendDecimal(message, value);
  Refuse(owner, field, message);
}

Cell Fixed(std::uint64_t bits) noexcept {
  return {.bits = bits, .isNull = false};
}
Cell Fixed(std::int64_t value) noexcept {
  return Fixed(static_cast<std::uint64_t>(value));
}

std::int64_t Least(FieldType type) noexcept {
  return type == FieldType::Int16   ? std::numeric_limits<std::int16_t>::min()
         : type == FieldType::Int32 ? std::numeric_limits<std::int32_t>::min()
                                    : std::numeric_limits<std::int64_t>::min();
}

bool FitsInteger(FieldType type, std::int64_t value) noexcept {
  return value >= Least(type) && value <= -(Least(type) + 1);
}

bool HasLoneSurrogate(std::u16string_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xF800U) == 0xD800U) {
      const bool isPair = (text[i] & 0xFC00U) == 0xD800U && i + 1 < text.size() && (text[i + 1] & 0xFC00U) == 0xDC00U;
      if (!isPair) {
        return true;
      }
      ++i;
    }
  }
  return false;
}

/// Turns a value into a cell of one field.
class Maker {
 public:
  Maker(const FieldDef& field, TextView owner) noexcept : field_(field), owner_(owner) {}

  Cell operator()(Null) const { return {}; }

  Cell operator()(bool value) const {
    Expect(field_.type == FieldType::Boolean);
    return Fixed(std::uint64_t{value});
  }

  Cell operator()(std::int64_t value) const {
    switch (field_.type) {
      case FieldType::Int16:
      case FieldType::Int32:
      case FieldType::Int64:
      case FieldType::AutoInc:
        if (!FitsInteger(field_.type, value)) {
          RefuseNumber(owner_, field_, Text("de tip ") + TraitsOf(field_.type).name + " nu poate tine valoarea ",
                       value);
        }
        return Fixed(value);
      case FieldType::Double: {
        constexpr std::int64_t kExact = std::int64_t{1} << 53;
        if (value < -kExact || value > kExact) {
          RefuseNumber(owner_, field_, "de tip Double nu poate tine exact valoarea ", value);
        }
        return (*this)(static_cast<double>(value));
      }
      default:
        RefuseKind(owner_, field_);
    }
  }

  Cell operator()(double value) const {
    Expect(field_.type == FieldType::Double);
    if (std::isnan(value)) {
      Refuse(owner_, field_, "nu poate tine o valoare care nu este un numar");
    }
    return Fixed(std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value));
  }

  Cell operator()(Currency value) const {
    Expect(field_.type == FieldType::Currency);
    return Fixed(value.Raw());
  }

  Cell operator()(DateTime value) const {
    switch (field_.type) {
      case FieldType::Date: {
        const double days = value.Days();
        if (!(days >= kFirstDayNumber && days <= kLastDayNumber)) {
          RefuseMoment(value, "nu poate tine ziua ");
        }
        const auto day = static_cast<std::int32_t>(days);
        if (day != days) {
          RefuseMoment(value, "tine zile intregi, nu ");
        }
        return Fixed(std::int64_t{day});
      }
      case FieldType::Time: {
        const double days = value.Days();
        const std::int64_t milliseconds = days >= 0 && days < 1 ? MillisecondsOf(value) : kMillisecondsPerDay;
        if (milliseconds >= kMillisecondsPerDay) {
          RefuseMoment(value, "tine ore ale unei zile, nu ");
        }
        return Fixed(milliseconds);
      }
      case FieldType::DateTime:
        try {
          return Fixed(MillisecondsOf(value));
        } catch (const DateEncodingError&) {
          RefuseMoment(value, "nu poate tine ziua ");
        }
      default:
        RefuseKind(owner_, field_);
    }
  }

  Cell operator()(TextView value) const {
    switch (field_.type) {
      case FieldType::Text:
        CheckLength(value.size(), "octeti");
        [[fallthrough]];
      case FieldType::Memo:
        return Large(value);
      default:
        RefuseKind(owner_, field_);
    }
  }

  Cell operator()(std::u16string_view value) const {
    Expect(field_.type == FieldType::WideText);
    CheckLength(value.size(), "unitati");
    if (HasLoneSurrogate(value)) {
      Refuse(owner_, field_, "nu poate tine un surogat UTF-16 fara pereche");
    }
    return Large({reinterpret_cast<const char*>(value.data()), value.size() * sizeof(char16_t)});
  }

  Cell operator()(const Guid& value) const {
    Expect(field_.type == FieldType::Guid);
    Cell cell = Fixed(std::uint64_t{value.data1} << 32U | std::uint64_t{value.data2} << 16U | value.data3);
    for (const std::uint8_t byte : value.data4) {
      cell.more = cell.more << 8U | byte;
    }
    return cell;
  }

  Cell operator()(BytesView value) const {
    Expect(field_.type == FieldType::Blob);
    return Large({reinterpret_cast<const char*>(value.data()), value.size()});
  }

 private:
  void Expect(bool isRightType) const {
    if (!isRightType) {
      RefuseKind(owner_, field_);
    }
  }

  void CheckLength(std::size_t size, TextView unit) const {
    if (field_.size != 0 && size > static_cast<std::size_t>(field_.size)) {
      Text why = "tine cel mult ";
      AppendDecimal(why, field_.size);
      why.append(" ").append(unit).append(", nu ");
      AppendDecimal(why, size);
      Refuse(owner_, field_, why);
    }
  }

  [[nodiscard]] Cell Large(std::string_view bytes) const {
    if (bytes.size() > kMostBytes) {
      Refuse(owner_, field_, "tine cel mult 2147483647 octeti");
    }
    return {.bytes = bytes, .isNull = false};
  }

  [[noreturn]] void RefuseMoment(DateTime value, TextView why) const {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value.Days()).ptr;
    Refuse(owner_, field_, Text(why).append(digits.data(), end));
  }

  const FieldDef& field_;
  TextView owner_;
};

std::int64_t Signed(const Cell& cell) noexcept {
  return static_cast<std::int64_t>(cell.bits);
}

bool IsAllowed(FieldType type, const Cell& cell) noexcept {
  const std::int64_t value = Signed(cell);
  switch (type) {
    case FieldType::Double: {
      const auto number = std::bit_cast<double>(cell.bits);
      return !std::isnan(number) && !(number == 0 && std::signbit(number));
    }
    default:
      return value >= RangeOf(type).least && value <= RangeOf(type).most;
  }
}

}  // namespace

NumberRange RangeOf(FieldType type) noexcept {
  switch (type) {
    case FieldType::Date:
      return {kFirstDayNumber, kLastDayNumber};
    case FieldType::Time:
      return {0, kMillisecondsPerDay - 1};
    case FieldType::DateTime:
      return {std::int64_t{kFirstDayNumber} * kMillisecondsPerDay,
              (std::int64_t{kLastDayNumber} + 1) * kMillisecondsPerDay - 1};
    default:
      return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
  }
}

Cell MakeAnyCell(const FieldDef& field, const ValueView& value, TextView owner) {
  return std::visit(Maker(field, owner), value.Get());
}

void CheckCell(const FieldDef& field, const Cell& cell, TextView owner) {
  if (cell.isNull) {
    return;
  }
  if (!IsAllowed(field.type, cell)) {
    Refuse(owner, field, Text("nu poate tine ") + Describe(FieldType::Int64, cell));
  }
  if (TraitsOf(field.type).storage != Storage::Fixed) {
    MakeCell(field, ViewOf(field.type, cell), owner);
  }
}

ValueView ViewOf(FieldType type, const Cell& cell) noexcept {
  if (cell.isNull) {
    return Null{};
  }
  const std::int64_t value = Signed(cell);
  switch (type) {
    case FieldType::Int16:
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return value;
    case FieldType::Currency:
      return Currency::FromRaw(value);
    case FieldType::Double:
      return std::bit_cast<double>(cell.bits);
    case FieldType::Date:
      return DateTime(static_cast<double>(value));
    case FieldType::Time:
    case FieldType::DateTime:
      return MomentOf(value);
    case FieldType::Text:
    case FieldType::Memo:
      return cell.bytes;
    case FieldType::WideText:
      return std::u16string_view(reinterpret_cast<const char16_t*>(cell.bytes.data()),
                                 cell.bytes.size() / sizeof(char16_t));
    case FieldType::Boolean:
      return cell.bits != 0;
    case FieldType::Guid: {
      Guid guid{static_cast<std::uint32_t>(cell.bits >> 32U), static_cast<std::uint16_t>(cell.bits >> 16U),
                static_cast<std::uint16_t>(cell.bits)};
      for (std::size_t i = 0; i < guid.data4.size(); ++i) {
        guid.data4[i] = static_cast<std::uint8_t>(cell.more >> (56 - 8 * i));
      }
      return guid;
    }
    case FieldType::Blob:
      return BytesView(reinterpret_cast<const std::uint8_t*>(cell.bytes.data()), cell.bytes.size());
  }
  return Null{};
}

Value OwnedValue(const ValueView& view) {
  return std::visit(
      []<class Held>(const Held& held) -> Value {
        if constexpr (std::is_same_v<Held, TextView>) {
          return Text(held);
        } else if constexpr (std::is_same_v<Held, std::u16string_view>) {
          return WideText(held);
        } else if constexpr (std::is_same_v<Held, BytesView>) {
          return Bytes(held.begin(), held.end());
        } else {
          return held;
        }
      },
      view.Get());
}

Value ValueOf(FieldType type, const Cell& cell) {
  return OwnedValue(ViewOf(type, cell));
}

bool AreEqual(FieldType type, const Cell& left, const Cell& right) noexcept {
  if (left.isNull || right.isNull) {
    return left.isNull == right.isNull;
  }
  return TraitsOf(type).storage == Storage::Fixed ? left.bits == right.bits && left.more == right.more
                                                  : left.bytes == right.bytes;
}

Text Describe(FieldType type, const Cell& cell) {
  constexpr std::size_t kMostCharacters = 40;
  if (cell.isNull) {
    return "null";
  }
  switch (type) {
    case FieldType::Text:
    case FieldType::Memo:
      return Quoted(cell.bytes.substr(0, kMostCharacters));
    case FieldType::WideText:
    case FieldType::Blob: {
      Text size;
      AppendDecimal(size, cell.bytes.size());
      return "(" + size + " octeti)";
    }
    case FieldType::Guid: {
      constexpr TextView kDigits = "0123456789ABCDEF";
      Text digits = "{";
      for (int i = 0; i < 32; ++i) {
        digits += i == 8 || i == 12 || i == 16 || i == 20 ? "-" : "";
        digits += kDigits[(i < 16 ? cell.bits >> (60 - 4 * i) : cell.more >> (124 - 4 * i)) & 15U];
      }
      return digits + "}";
    }
    default: {
      Text number;
      AppendDecimal(number, Signed(cell));
      return number;
    }
  }
}

}  // namespace kiv::store
