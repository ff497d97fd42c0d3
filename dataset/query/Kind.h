#pragma once

#include <cstdint>

#include "kivtools/dataset/Schema.h"

/// The filter language: from a text over a typed tree to the values of rows.
namespace kiv::query {

/// What an expression gives. A value is a store::Cell, laid out as that of a field of the same kind.
enum class Kind : std::uint8_t {
  Null,
  Boolean,
  Integer,
  Currency,
  Double,
  Date,
  Time,
  Moment,
  Text,
  Wide,
  Guid,
  Bytes
};

constexpr Kind KindOf(FieldType type) noexcept {
  switch (type) {
    case FieldType::Int16:
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return Kind::Integer;
    case FieldType::Currency:
      return Kind::Currency;
    case FieldType::Double:
      return Kind::Double;
    case FieldType::Date:
      return Kind::Date;
    case FieldType::Time:
      return Kind::Time;
    case FieldType::DateTime:
      return Kind::Moment;
    case FieldType::Text:
    case FieldType::Memo:
      return Kind::Text;
    case FieldType::WideText:
      return Kind::Wide;
    case FieldType::Boolean:
      return Kind::Boolean;
    case FieldType::Guid:
      return Kind::Guid;
    case FieldType::Blob:
      return Kind::Bytes;
  }
  return Kind::Null;
}

/// The widest type of a kind, whose fields can hold every value of it. What is always null counts as a condition.
constexpr FieldType TypeOf(Kind kind) noexcept {
  constexpr FieldType kTypes[] = {FieldType::Boolean, FieldType::Boolean,  FieldType::Int64, FieldType::Currency,
                                  FieldType::Double,  FieldType::Date,     FieldType::Time,  FieldType::DateTime,
                                  FieldType::Memo,    FieldType::WideText, FieldType::Guid,  FieldType::Blob};
  return kTypes[static_cast<std::size_t>(kind)];
}

/// What messages call it: that of a Text and of a Memo is "Text".
TextView NameOf(Kind kind) noexcept;

constexpr bool IsNumber(Kind kind) noexcept {
  return kind == Kind::Integer || kind == Kind::Currency || kind == Kind::Double;
}

}  // namespace kiv::query
