#include "dataset/query/Ranges.h"

#include <algorithm>
#include <cmath>

#include "core/Calendar.h"
#include "dataset/query/Calculation.h"

namespace kiv::query {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
/// More are looked through row by row.
constexpr std::size_t kMostRanges = 16;

/// A constant in the units of a column: the last of these that is not above it, and whether it is one itself.
struct Mark {
  std::int64_t floor;
  bool isExact;
};

Mark Divided(std::int64_t value, std::int64_t unit) noexcept {
  const std::int64_t quotient = value / unit;
  const std::int64_t rest = value % unit;
  return {rest < 0 ? quotient - 1 : quotient, rest == 0};
}

std::optional<Mark> Multiplied(std::int64_t value, std::int64_t unit) noexcept {
  std::int64_t product = 0;
  return __builtin_mul_overflow(value, unit, &product) ? std::nullopt : std::optional(Mark{product, true});
}

std::optional<Mark> MarkOf(Kind column, Operand constant) noexcept {
  const std::int64_t value = IntegerOf(constant.cell);
  if (column == constant.kind) {
    return Mark{value, true};
  }
  switch (constant.kind) {
    case Kind::Integer:
      return column == Kind::Currency ? Multiplied(value, Currency::kPerUnit) : std::nullopt;
    case Kind::Currency:
      return column == Kind::Integer ? std::optional(Divided(value, Currency::kPerUnit)) : std::nullopt;
    case Kind::Date:
      return column == Kind::Moment ? Multiplied(value, kMillisecondsPerDay) : std::nullopt;
    case Kind::Moment:
      return column == Kind::Date ? std::optional(Divided(value, kMillisecondsPerDay)) : std::nullopt;
    default:
      return std::nullopt;
  }
}

Range IntegersThat(Relation relation, Mark mark) noexcept {
  Range range;
  switch (relation) {
    case Relation::Less:
      range.isEmpty = mark.isExact && mark.floor == kLeast;
      range.high = mark.isExact && !range.isEmpty ? mark.floor - 1 : mark.floor;
      break;
    case Relation::LessOrEqual:
      range.high = mark.floor;
      break;
    case Relation::Greater:
    case Relation::GreaterOrEqual: {
      const bool isWithin = mark.isExact && relation == Relation::GreaterOrEqual;
      range.isEmpty = !isWithin && mark.floor == kMost;
      range.low = isWithin || range.isEmpty ? mark.floor : mark.floor + 1;
      break;
    }
    default:
      range = {.low = mark.floor, .high = mark.floor, .isEmpty = !mark.isExact};
  }
  return range;
}

Range DoublesThat(Relation relation, double value) noexcept {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  switch (relation) {
    case Relation::Less:
      return {.highDouble = std::nextafter(value, -kInfinity)};
    case Relation::LessOrEqual:
      return {.highDouble = value};
    case Relation::Greater:
      return {.lowDouble = std::nextafter(value, kInfinity)};
    case Relation::GreaterOrEqual:
      return {.lowDouble = value};
    default:
      return {.lowDouble = value, .highDouble = value};
  }
}

std::optional<Range> ValuesThat(const Tree& tree, Kind column, Relation relation, const Node& constant) {
  const store::Cell& cell = tree.constants[constant.detail];
  if (cell.isNull) {
    return std::nullopt;
  }
  if (column == Kind::Double) {
    const double value = DoubleOf({constant.kind, cell});
    return std::isfinite(value) ? std::optional(DoublesThat(relation, value)) : std::nullopt;
  }
  const std::optional<Mark> mark = MarkOf(column, {constant.kind, cell});
  return mark ? std::optional(IntegersThat(relation, *mark)) : std::nullopt;
}

/// Cuts a range to what the column's own width holds.
void Fit(Range& range, FieldType type) noexcept {
  const store::Plane::Width width = store::TraitsOf(type).width;
  const std::int64_t most = width == store::Plane::Width::Two    ? std::numeric_limits<std::int16_t>::max()
                            : width == store::Plane::Width::Four ? std::numeric_limits<std::int32_t>::max()
                                                                 : kMost;
  range.low = std::max(range.low, -most - 1);
  range.high = std::min(range.high, most);
  range.isEmpty = range.isEmpty || range.low > range.high || range.lowDouble > range.highDouble;
}

constexpr Relation Mirrored(Relation relation) noexcept {
  switch (relation) {
    case Relation::Less:
      return Relation::Greater;
    case Relation::LessOrEqual:
      return Relation::GreaterOrEqual;
    case Relation::Greater:
      return Relation::Less;
    case Relation::GreaterOrEqual:
      return Relation::LessOrEqual;
    default:
      return relation;
  }
}

bool HasRanges(Kind kind) noexcept {
  return IsNumber(kind) || kind == Kind::Date || kind == Kind::Time || kind == Kind::Moment;
}

/// Collects the ranges of one condition, as long as each has one.
class Collector {
 public:
  Collector(const Tree& tree, const Node& field) noexcept : tree_(tree), field_(field) {}

  bool Add(Relation relation, const Node& constant) {
    const auto range = ValuesThat(tree_, field_.kind, relation, constant);
    if (range) {
      ranges_.push_back(*range);
    }
    return range.has_value();
  }
  /// What is in both of the last two.
  void IntersectTwo() {
    const Range last = ranges_.back();
    ranges_.pop_back();
    Range& both = ranges_.back();
    both = {.low = std::max(both.low, last.low),
            .high = std::min(both.high, last.high),
            .lowDouble = std::max(both.lowDouble, last.lowDouble),
            .highDouble = std::min(both.highDouble, last.highDouble),
            .isEmpty = both.isEmpty || last.isEmpty};
  }
  [[nodiscard]] RangeCondition Finish(FieldType type, bool isNegated) && {
    for (Range& range : ranges_) {
      Fit(range, type);
    }
    return {field_.detail, std::move(ranges_), isNegated};
  }

 private:
  const Tree& tree_;
  const Node& field_;
  std::vector<Range> ranges_;
};

}  // namespace

std::optional<RangeCondition> RangesOf(const Tree& tree, const Node& node, const store::SchemaData& schema) {
  const bool isMirrored = node.op == Op::Compare && tree.Operand(node, 1).op == Op::Field;
  const Node& field = tree.Operand(node, isMirrored ? 1 : 0);
  if (field.op != Op::Field || !HasRanges(field.kind) || node.operandCount > kMostRanges + 1) {
    return std::nullopt;
  }
  for (std::uint32_t i = 0; i < node.operandCount; ++i) {
    const Node& operand = tree.Operand(node, i);
    if (&operand != &field && operand.op != Op::Constant) {
      return std::nullopt;
    }
  }
  Collector collector(tree, field);
  const auto finish = [&](bool isNegated) {
    return std::optional(std::move(collector).Finish(schema.fields[field.detail].type, isNegated));
  };
  switch (node.op) {
    case Op::Compare: {
      const bool isNegated = node.relation == Relation::NotEqual;
      const Relation relation = isNegated ? Relation::Equal : isMirrored ? Mirrored(node.relation) : node.relation;
      return collector.Add(relation, tree.Operand(node, isMirrored ? 0 : 1)) ? finish(isNegated) : std::nullopt;
    }
    case Op::Between:
      if (!collector.Add(Relation::GreaterOrEqual, tree.Operand(node, 1)) ||
          !collector.Add(Relation::LessOrEqual, tree.Operand(node, 2))) {
        return std::nullopt;
      }
      collector.IntersectTwo();
      return finish(false);
    case Op::In:
      for (std::uint32_t i = 1; i < node.operandCount; ++i) {
        if (!collector.Add(Relation::Equal, tree.Operand(node, i))) {
          return std::nullopt;
        }
      }
      return finish(false);
    default:
      return std::nullopt;
  }
}

}  // namespace kiv::query
