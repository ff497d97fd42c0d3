#pragma once

#include <cstdint>

#include "dataset/query/Tree.h"
#include "dataset/store/Cell.h"

/// Arithmetic and comparison of values, exactly as the language has them.
namespace kiv::query {

/// Why there is no result.
enum class Fault : std::uint8_t { None, Overflow, DivisionByZero, DatasetGone };

/// A value with the kind that says how to read it.
struct Operand {
  Kind kind;
  const store::Cell& cell;
};

inline std::int64_t IntegerOf(const store::Cell& cell) noexcept {
  return static_cast<std::int64_t>(cell.bits);
}
/// Any number as a double.
double DoubleOf(Operand number) noexcept;

/// Below 0 if `left` comes before `right`, 0 if they are equal. Both are of kinds that compare with one another and
/// neither is null.
int Compare(Operand left, Operand right, Collation collation) noexcept;

/// What a relation says of an order that Compare() gives.
constexpr bool Holds(Relation relation, int order) noexcept {
  switch (relation) {
    case Relation::Equal:
      return order == 0;
    case Relation::NotEqual:
      return order != 0;
    case Relation::Less:
      return order < 0;
    case Relation::LessOrEqual:
      return order <= 0;
    case Relation::Greater:
      return order > 0;
    case Relation::GreaterOrEqual:
      return order >= 0;
  }
  return false;
}

/// Works out a sum, difference, product or quotient of the kind `result`, which has to be the one that the two kinds
/// give, into `out`. Neither operand is null.
Fault Calculate(Op op, Kind result, Operand left, Operand right, store::Cell& out) noexcept;
/// The number with the other sign, and without one.
Fault Negate(Kind kind, std::int64_t bits, store::Cell& out) noexcept;
Fault Absolute(Kind kind, std::int64_t bits, store::Cell& out) noexcept;
/// The number with that many decimals, halves to even.
Fault RoundTo(Kind kind, const store::Cell& number, std::int64_t decimals, store::Cell& out) noexcept;
/// The value in another kind: numbers widen, a day becomes its first moment.
Fault Convert(Operand value, Kind kind, store::Cell& out) noexcept;

}  // namespace kiv::query
