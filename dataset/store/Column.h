#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dataset/store/Cell.h"
#include "dataset/store/SchemaData.h"
#include "dataset/store/Texts.h"
#include "kivtools/dataset/store/Heads.h"

namespace kiv::store {

/// The element with that number of a block of a field's values, sign included; its bytes are still a code or number.
inline Cell LoadElement(FieldType type, const std::byte* block, std::uint32_t place) noexcept {
  const auto load = [&]<class Element>(Element element) {
    std::memcpy(&element, block + place * sizeof element, sizeof element);
    return element;
  };
  const TypeTraits& traits = TraitsOf(type);
  Cell cell;
  cell.isNull = false;
  switch (traits.width) {
    case Plane::Width::Bit:
      cell.bits = std::to_integer<unsigned>(block[place / 8]) >> (place % 8) & 1U;
      break;
    case Plane::Width::One:
      cell.bits = load(std::uint8_t{});
      break;
    case Plane::Width::Two:
      cell.bits = static_cast<std::uint64_t>(std::int64_t{load(std::int16_t{})});
      break;
    case Plane::Width::Four:
      cell.bits = traits.storage == Storage::Fixed ? static_cast<std::uint64_t>(std::int64_t{load(std::int32_t{})})
                                                   : load(std::uint32_t{});
      break;
    case Plane::Width::Eight:
      cell.bits = load(std::uint64_t{});
      break;
  }
  return cell;
}

/// What is done with the values of one field for a set of rows.
struct ColumnPlanes : ColumnHead {
  explicit ColumnPlanes(FieldType fieldType) noexcept : ColumnHead{fieldType, Plane(TraitsOf(fieldType).width)} {}

  Plane more{Plane::Width::Eight};  ///< the second halves of a Guid, empty elsewhere

  /// The row's value, its bytes still a code or number.
  [[nodiscard]] Cell Load(std::uint32_t row) const noexcept {
    if (IsNull(row)) {
      return {};
    }
    Cell cell = LoadElement(type, values.BlockAt(row), PlaceInBlock(row));
    if (type == FieldType::Guid) {
      cell.more = more.At<std::uint64_t>(row);
    }
    return cell;
  }
  /// Prepares Store() of a value. Throws std::bad_alloc.
  void MakeWritable(std::uint32_t row, bool isNull) {
    values.MakeWritable(row);
    if (type == FieldType::Guid) {
      more.MakeWritable(row);
    }
    nulls.MakeWritableFor(row, !isNull);
  }
  /// Writes the value with its code or number; a null leaves zeros.
  void Store(std::uint32_t row, const Cell& cell) noexcept {
    switch (values.ElementWidth()) {
      case Plane::Width::Bit:
        values.PutBit(row, cell.bits != 0);
        break;
      case Plane::Width::One:
        values.Put(row, static_cast<std::uint8_t>(cell.bits));
        break;
      case Plane::Width::Two:
        values.Put(row, static_cast<std::uint16_t>(cell.bits));
        break;
      case Plane::Width::Four:
        values.Put(row, static_cast<std::uint32_t>(cell.bits));
        break;
      case Plane::Width::Eight:
        values.Put(row, cell.bits);
        break;
    }
    if (type == FieldType::Guid) {
      more.Put(row, cell.more);
    }
    nulls.PutBit(row, cell.isNull);
  }
};

/// All of one field.
struct Column : ColumnPlanes {
  using ColumnPlanes::ColumnPlanes;

  Texts texts;
};

}  // namespace kiv::store
