#pragma once

#include <cstring>
#include <limits>
#include <span>
#include <type_traits>

#include "dataset/store/Column.h"

namespace kiv::query {

/// Calls back with the place of each row in `rows` and its element of the column, undefined for a null.
template <class Element, class Take>
void ForEachElement(const store::Column& column, std::span<const std::uint32_t> rows, Take&& take) {
  const std::byte* block = nullptr;
  std::uint32_t number = std::numeric_limits<std::uint32_t>::max();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (store::BlockOf(rows[i]) != number) {
      number = store::BlockOf(rows[i]);
      block = column.values.BlockAt(rows[i]);
    }
    Element element;
    std::memcpy(&element, block + store::PlaceInBlock(rows[i]) * sizeof element, sizeof element);
    take(i, element);
  }
}

/// The same with the numbers of a column of integers, days, milliseconds or amounts, in 32 bits where they fit, of
/// which 32-bit systems make much less; false of any other.
template <class Take>
bool ForEachInteger(const store::Column& column, std::span<const std::uint32_t> rows, Take&& take) {
  const auto eachAs = [&]<class Element>(Element /*of*/) {
    ForEachElement<Element>(column, rows, [&](std::size_t i, Element element) {
      take(i, std::conditional_t<sizeof element <= 4, std::int32_t, std::int64_t>{element});
    });
    return true;
  };
  switch (column.type) {
    case FieldType::Int16:
      return eachAs(std::int16_t{});
    case FieldType::Int32:
    case FieldType::Date:
    case FieldType::Time:
      return eachAs(std::int32_t{});
    case FieldType::Int64:
    case FieldType::AutoInc:
    case FieldType::Currency:
    case FieldType::DateTime:
      return eachAs(std::int64_t{});
    default:
      return false;
  }
}

}  // namespace kiv::query
