#include "dataset/query/Calculation.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "core/Calendar.h"
#include "core/Int128.h"

namespace kiv::query {
namespace {

using store::Cell;

constexpr std::int64_t kPerUnit = Currency::kPerUnit;

Fault PutInteger(std::int64_t value, Cell& out) noexcept {
  out = {.bits = static_cast<std::uint64_t>(value), .isNull = false};
  return Fault::None;
}

template <class Optional>
Fault PutIfThere(const Optional& value, Cell& out) noexcept {
  return value ? PutInteger(*value, out) : Fault::Overflow;
}

Fault PutDouble(double value, Cell& out) noexcept {
  if (!std::isfinite(value)) {
    return Fault::Overflow;
  }
  out = {.bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value), .isNull = false};
  return Fault::None;
}

/// An integer or an amount in ten-thousandths.
Int128 Scaled(Operand number) noexcept {
  const std::int64_t value = IntegerOf(number.cell);
  return number.kind == Kind::Integer ? Int128::Product(value, kPerUnit) : Int128(value);
}

std::int64_t MillisecondsOf(Operand moment) noexcept {
  const std::int64_t value = IntegerOf(moment.cell);
  return moment.kind == Kind::Date ? value * kMillisecondsPerDay : value;
}

template <class Number>
int Order(const Number& left, const Number& right) noexcept {
  return left < right ? -1 : right < left ? 1 : 0;
}

int CompareWide(std::string_view left, std::string_view right) noexcept {
  const auto unitAt = [](std::string_view bytes, std::size_t at) {
    char16_t unit = 0;
    std::memcpy(&unit, bytes.data() + at, sizeof unit);
    return unit;
  };
  const std::size_t shared = std::min(left.size(), right.size());
  for (std::size_t at = 0; at < shared; at += sizeof(char16_t)) {
    if (const int order = Order(unitAt(left, at), unitAt(right, at)); order != 0) {
      return order;
    }
  }
  return Order(left.size(), right.size());
}

Fault CalculateIntegers(Op op, std::int64_t left, std::int64_t right, Cell& out) noexcept {
  std::int64_t result = 0;
  switch (op) {
    case Op::Add:
      return __builtin_add_overflow(left, right, &result) ? Fault::Overflow : PutInteger(result, out);
    case Op::Subtract:
      return __builtin_sub_overflow(left, right, &result) ? Fault::Overflow : PutInteger(result, out);
    case Op::Multiply:
      return __builtin_mul_overflow(left, right, &result) ? Fault::Overflow : PutInteger(result, out);
    default:
      break;
  }
  if (right == 0) {
    return Fault::DivisionByZero;
  }
  if (right == -1) {  // the processor's own division stops the program at the least integer
    return op == Op::Modulo ? PutInteger(0, out) : Negate(Kind::Integer, left, out);
  }
  return PutInteger(op == Op::Modulo ? left % right : left / right, out);
}

Fault CalculateAmounts(Op op, Operand left, Operand right, Cell& out) noexcept {
  const std::int64_t first = IntegerOf(left.cell);
  const std::int64_t second = IntegerOf(right.cell);
  const bool areAmounts = left.kind == right.kind;
  switch (op) {
    case Op::Add:
    case Op::Subtract: {
      if (areAmounts) {
        return CalculateIntegers(op, first, second, out);
      }
      const Int128 other = Scaled(right);
      return PutIfThere((Scaled(left) + (op == Op::Add ? other : -other)).In64Bits(), out);
    }
    case Op::Multiply: {
      const Int128 product = Int128::Product(first, second);
      return PutIfThere(areAmounts ? product.DividedBy(kPerUnit) : product.In64Bits(), out);
    }
    default:
      break;
  }
  if (second == 0) {
    return Fault::DivisionByZero;
  }
  // Ten-thousandths by ten-thousandths give units, and so do those of an integer's by an amount's.
  const std::int64_t factor = right.kind == Kind::Integer ? 1 : areAmounts ? kPerUnit : kPerUnit * kPerUnit;
  return PutIfThere(Int128::Product(first, factor).DividedBy(second), out);
}

Fault CalculateDoubles(Op op, double left, double right, Cell& out) noexcept {
  switch (op) {
    case Op::Add:
      return PutDouble(left + right, out);
    case Op::Subtract:
      return PutDouble(left - right, out);
    case Op::Multiply:
      return PutDouble(left * right, out);
    default:
      return right == 0 ? Fault::DivisionByZero : PutDouble(left / right, out);
  }
}

Fault CalculateDay(Op op, Operand left, Operand right, Cell& out) noexcept {
  const std::int64_t first = IntegerOf(left.cell);
  const std::int64_t second = IntegerOf(right.cell);
  const Fault fault = CalculateIntegers(op, first, second, out);
  const std::int64_t day = IntegerOf(out);
  return fault == Fault::None && (day < kFirstDayNumber || day > kLastDayNumber) ? Fault::Overflow : fault;
}

}  // namespace

double DoubleOf(Operand number) noexcept {
  switch (number.kind) {
    case Kind::Double:
      return std::bit_cast<double>(number.cell.bits);
    case Kind::Currency:
      return static_cast<double>(IntegerOf(number.cell)) / static_cast<double>(kPerUnit);
    default:
      return static_cast<double>(IntegerOf(number.cell));
  }
}

int Compare(Operand left, Operand right, Collation collation) noexcept {
  if (left.kind == Kind::Double || right.kind == Kind::Double) {
    return Order(DoubleOf(left), DoubleOf(right));
  }
  switch (left.kind) {
    case Kind::Text:
      return CompareTexts(left.cell.bytes, right.cell.bytes, collation);
    case Kind::Wide:
      return CompareWide(left.cell.bytes, right.cell.bytes);
    case Kind::Guid:
      return left.cell.bits != right.cell.bits ? Order(left.cell.bits, right.cell.bits)
                                               : Order(left.cell.more, right.cell.more);
    default:
      break;
  }
  if (left.kind == right.kind) {
    return Order(IntegerOf(left.cell), IntegerOf(right.cell));
  }
  return IsNumber(left.kind) ? Order(Scaled(left), Scaled(right)) : Order(MillisecondsOf(left), MillisecondsOf(right));
}

Fault Calculate(Op op, Kind result, Operand left, Operand right, Cell& out) noexcept {
  switch (result) {
    case Kind::Currency:
      return CalculateAmounts(op, left, right, out);
    case Kind::Double:
      return CalculateDoubles(op, DoubleOf(left), DoubleOf(right), out);
    case Kind::Date:
      return CalculateDay(op, left, right, out);
    default:
      return CalculateIntegers(op, IntegerOf(left.cell), IntegerOf(right.cell), out);
  }
}

Fault Negate(Kind kind, std::int64_t bits, Cell& out) noexcept {
  return kind == Kind::Double ? PutDouble(-std::bit_cast<double>(bits), out)
                              : CalculateIntegers(Op::Subtract, 0, bits, out);
}

Fault Absolute(Kind kind, std::int64_t bits, Cell& out) noexcept {
  if (kind == Kind::Double) {
    return PutDouble(std::fabs(std::bit_cast<double>(bits)), out);
  }
  return bits < 0 ? Negate(kind, bits, out) : PutInteger(bits, out);
}

Fault RoundTo(Kind kind, const Cell& number, std::int64_t decimals, Cell& out) noexcept {
  if (kind == Kind::Integer) {
    return PutInteger(IntegerOf(number), out);
  }
  std::int64_t unit = 1;
  for (std::int64_t i = 0; i < (kind == Kind::Currency ? 4 - decimals : decimals); ++i) {
    unit *= 10;
  }
  if (kind == Kind::Currency) {
    return CalculateIntegers(Op::Multiply, *Int128(IntegerOf(number)).DividedBy(unit), unit, out);
  }
  const auto value = std::bit_cast<double>(number.bits);
  const double scaled = value * static_cast<double>(unit);
  // Beyond 2^52 a double has no decimals.
  constexpr double kWhole = 4503599627370496;
  return PutDouble(std::fabs(scaled) < kWhole ? std::nearbyint(scaled) / static_cast<double>(unit) : value, out);
}

Fault Convert(Operand value, Kind kind, Cell& out) noexcept {
  if (value.kind == kind) {
    out = value.cell;
    return Fault::None;
  }
  switch (kind) {
    case Kind::Currency:
      return PutIfThere(Scaled(value).In64Bits(), out);
    case Kind::Double:
      return PutDouble(DoubleOf(value), out);
    default:
      return PutInteger(MillisecondsOf(value), out);
  }
}

}  // namespace kiv::query
