#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#include "core/Calendar.h"
#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/Value.h"

namespace kiv::store {

/// A value of a field as the store works with it.
struct Cell {
  /// The element of the column. Integers, amounts, days and milliseconds as they are, sign included; the bits of a
  /// double; the first half of a Guid; a code or number once the bytes have one.
  std::uint64_t bits = 0;
  /// The second half of a Guid.
  std::uint64_t more = 0;
  /// What a text, memo or blob holds. Borrowed.
  std::string_view bytes = {};
  bool isNull = true;
};

/// The short way to the cell of the values that most rows hold: a number, amount, day or text that fits its field.
/// False for all others, those that are to be refused among them.
inline bool MakeCommonCell(const FieldDef& field, const ValueView& value, Cell& cell) noexcept {
  const auto put = [&cell](std::int64_t element) {
    cell.bits = static_cast<std::uint64_t>(element);
    cell.isNull = false;
    return true;
  };
  switch (field.type) {
    case FieldType::Int32:
    case FieldType::Int64: {
      const auto* const held = std::get_if<std::int64_t>(&value.Get());
      const bool isNarrow = field.type == FieldType::Int32;
      return held != nullptr && (!isNarrow || *held == static_cast<std::int32_t>(*held)) && put(*held);
    }
    case FieldType::Currency: {
      const auto* const held = std::get_if<Currency>(&value.Get());
      return held != nullptr && put(held->Raw());
    }
    case FieldType::Double: {
      const auto* const held = std::get_if<double>(&value.Get());
      // Neither zero, of which there are two, nor what is not a number.
      return held != nullptr && (*held < 0 || *held > 0) && put(std::bit_cast<std::int64_t>(*held));
    }
    case FieldType::Date: {
      const auto* const held = std::get_if<DateTime>(&value.Get());
      if (held == nullptr || !(held->Days() >= kFirstDayNumber && held->Days() <= kLastDayNumber)) {
        return false;
      }
      const auto day = static_cast<std::int32_t>(held->Days());
      return day == held->Days() && put(day);
    }
    case FieldType::Text: {
      const auto* const held = std::get_if<TextView>(&value.Get());
      if (held == nullptr || field.size <= 0 || held->size() > static_cast<std::size_t>(field.size)) {
        return false;
      }
      cell.bytes = *held;
      cell.isNull = false;
      return true;
    }
    default:
      return false;
  }
}

/// The value as the field holds it. `owner` begins the message, as `Dataset "linii"`. Throws InvalidCast for a value of
/// another kind than the field's; Error for one that the field cannot hold.
Cell MakeAnyCell(const FieldDef& field, const ValueView& value, TextView owner);
/// The same into a cell that is there: a copy of one just written part by part would wait for the parts.
inline void MakeCellIn(Cell& cell, const FieldDef& field, const ValueView& value, TextView owner) {
  cell = Cell{};
  if (!MakeCommonCell(field, value, cell)) {
    cell = MakeAnyCell(field, value, owner);
  }
}
inline Cell MakeCell(const FieldDef& field, const ValueView& value, TextView owner) {
  Cell cell;
  MakeCellIn(cell, field, value, owner);
  return cell;
}

/// Checks what MakeCell would have refused, for cells that come from a file. Throws Error.
void CheckCell(const FieldDef& field, const Cell& cell, TextView owner);

/// The least and the most that an element of a type of fixed width may be, doubles apart.
struct NumberRange {
  std::int64_t least;
  std::int64_t most;
};
NumberRange RangeOf(FieldType type) noexcept;

/// The cell as the user sees it. Bytes stay borrowed.
ValueView ViewOf(FieldType type, const Cell& cell) noexcept;

/// A borrowed value as one of its own.
Value OwnedValue(const ValueView& view);

/// The cell as a value of its own.
Value ValueOf(FieldType type, const Cell& cell);

/// Whether both hold the same value; codes do not count.
bool AreEqual(FieldType type, const Cell& left, const Cell& right) noexcept;

/// The value in a message: at most 40 characters of it.
Text Describe(FieldType type, const Cell& cell);

}  // namespace kiv::store
