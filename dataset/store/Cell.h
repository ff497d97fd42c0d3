#pragma once

#include <cstdint>
#include <string_view>

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

/// The value as the field holds it. `owner` begins the message, as `Dataset "linii"`. Throws InvalidCast for a value of
/// another kind than the field's; Error for one that the field cannot hold.
Cell MakeCell(const FieldDef& field, const ValueView& value, TextView owner);

/// Checks what MakeCell would have refused, for cells that come from a file. Throws Error.
void CheckCell(const FieldDef& field, const Cell& cell, TextView owner);

/// The cell as the user sees it. Bytes stay borrowed.
ValueView ViewOf(FieldType type, const Cell& cell) noexcept;

/// The cell as a value of its own.
Value ValueOf(FieldType type, const Cell& cell);

/// Whether both hold the same value; codes do not count.
bool AreEqual(FieldType type, const Cell& left, const Cell& right) noexcept;

/// The value in a message: at most 40 characters of it.
Text Describe(FieldType type, const Cell& cell);

}  // namespace kiv::store
