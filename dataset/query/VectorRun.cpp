#include "dataset/query/VectorRun.h"

#include <algorithm>
#include <cstring>

#include "dataset/query/RowBits.h"

namespace kiv::query {
namespace {

using store::Cell;

void PutTruth(Condition& out, std::size_t row, const Cell& cell) noexcept {
  if (!cell.isNull) {
    Set(cell.bits != 0 ? out.truth : out.falsity, row);
  }
}

}  // namespace

VectorRun::VectorRun(const Tree& tree, const store::Contents& contents, const Kernels& kernels)
    : tree_(tree),
      contents_(contents),
      kernels_(kernels),
      plan_(tree, contents),
      evaluator_(tree),
      conditions_(plan_.conditions),
      numbers_(plan_.numbers),
      entries_(plan_.entryFields.size()) {
  for (const Step& step : plan_.steps) {
    if (step.way == Way::Entries) {
      JudgeEntries(step.detail, step.place);
    }
  }
}

void VectorRun::Begin(std::uint32_t first) {
  first_ = first;
  count_ = std::min<std::size_t>(kBatch, contents_.rowCount - first);
  masks_.clear();
  masks_.push_back({FirstRows(count_)});
  const auto states = contents_.states.BlockBytes(store::BlockOf(first));
  const std::size_t offset = store::PlaceInBlock(first);
  Bits& present = masks_[0].active;
  for (std::size_t row = 0; row < count_ && offset + row < states.size(); ++row) {
    if (std::to_integer<std::uint8_t>(states[offset + row]) >= static_cast<std::uint8_t>(store::StoredState::Deleted)) {
      present[row / 64] &= ~(std::uint64_t{1} << (row % 64));
    }
  }
}

const Bits& VectorRun::Select(std::uint32_t first) {
  Begin(first);
  if (IsEmpty(masks_[0].active)) {
    selected_ = {};
  } else if (RunSteps()) {
    selected_ = Both(conditions_[plan_.registers[tree_.Root()]].truth, masks_[0].active);
  } else {
    SelectByRows();
  }
  return selected_;
}

/// Where a row has no value, the plain way says which one comes first.
void VectorRun::SelectByRows() {
  selected_ = {};
  ForEach(masks_[0].active, [&](std::size_t row) {
    const Cell& cell = evaluator_.Evaluate(tree_.Root(), contents_, first_ + static_cast<std::uint32_t>(row));
    if (!cell.isNull && cell.bits != 0) {
      Set(selected_, row);
    }
    return true;
  });
}

bool VectorRun::RunSteps() {
  for (std::size_t next = 0; next < plan_.steps.size();) {
    const Step& step = plan_.steps[next++];
    if (!RunStep(step, next)) {
      return false;
    }
  }
  return true;
}

bool VectorRun::RunStep(const Step& step, std::size_t& next) {
  switch (step.way) {
    case Way::Rows:
      return ForActiveRows(step, [&](std::size_t row, Cell& cell) {
        const Cell* const found =
            evaluator_.TryEvaluate(step.place, contents_, first_ + static_cast<std::uint32_t>(row));
        cell = found == nullptr ? Cell() : *found;
        return found != nullptr;
      });
    case Way::Entries:
      return RunEntries(step);
    case Way::Constant:
      RunConstant(step);
      break;
    case Way::Field:
      RunField(step);
      break;
    case Way::NullsOf: {
      Condition& out = conditions_[step.out];
      out.falsity = NotNull(contents_.columns[tree_.Operand(tree_.nodes[step.place], 0).detail]);
      out.truth = Without(FirstRows(count_), out.falsity);
      break;
    }
    case Way::Ranges:
      RunRanges(step);
      break;
    case Way::Not: {
      const Condition& operand = ConditionOf(tree_.nodes[step.place], 0);
      conditions_[step.out] = {operand.falsity, operand.truth};
      break;
    }
    case Way::Guard:
      RunGuard(step, next);
      break;
    case Way::And:
    case Way::Or:
      RunLogic(step);
      break;
    case Way::CompareIntegers:
    case Way::CompareDoubles:
      RunComparison(step);
      break;
    case Way::AddIntegers:
      return RunAddition(step);
    case Way::Apply:
      return RunApply(step);
  }
  return true;
}

void VectorRun::RunConstant(const Step& step) {
  const Node& node = tree_.nodes[step.place];
  const Cell& cell = tree_.constants[node.detail];
  const Bits rows = FirstRows(count_);
  if (IsConditionKind(node.kind)) {
    const bool isTrue = !cell.isNull && cell.bits != 0;
    conditions_[step.out] = {isTrue ? rows : Bits{}, cell.isNull || isTrue ? Bits{} : rows};
    return;
  }
  Numbers& out = numbers_[step.out];
  std::fill_n(out.own.begin(), count_, IntegerOf(cell));
  out.values = out.own.data();
  out.valid = cell.isNull ? Bits{} : rows;
}

Bits VectorRun::BitsOf(const store::Plane& plane) const noexcept {
  Bits bits{};
  const auto bytes = plane.BlockBytes(store::BlockOf(first_));
  const std::size_t offset = store::PlaceInBlock(first_) / 8;
  if (bytes.size() > offset) {
    std::memcpy(bits.data(), bytes.data() + offset, std::min(sizeof bits, bytes.size() - offset));
  }
  return bits;
}

Bits VectorRun::NotNull(const store::Column& column) const noexcept {
  return Without(FirstRows(count_), BitsOf(column.nulls));
}

void VectorRun::RunField(const Step& step) {
  const store::Column& column = contents_.columns[tree_.nodes[step.place].detail];
  const Bits valid = NotNull(column);
  if (column.type == FieldType::Boolean) {
    const Bits flags = BitsOf(column.values);
    conditions_[step.out] = {Both(valid, flags), Without(valid, flags)};
    return;
  }
  Numbers& out = numbers_[step.out];
  out.valid = valid;
  switch (column.values.ElementWidth()) {
    case store::Plane::Width::Two:
      std::copy_n(ElementsOf<std::int16_t>(column), count_, out.own.begin());
      out.values = out.own.data();
      break;
    case store::Plane::Width::Four:
      std::copy_n(ElementsOf<std::int32_t>(column), count_, out.own.begin());
      out.values = out.own.data();
      break;
    default:
      out.values = ElementsOf<std::int64_t>(column);
  }
}

void VectorRun::InRange(const store::Column& column, const Range& range, Bits& in) const {
  if (range.isEmpty) {
    in = {};
    return;
  }
  switch (column.values.ElementWidth()) {
    case store::Plane::Width::Two:
      kernels_.range16(ElementsOf<std::int16_t>(column), count_, static_cast<std::int16_t>(range.low),
                       static_cast<std::int16_t>(range.high), in);
      break;
    case store::Plane::Width::Four:
      kernels_.range32(ElementsOf<std::int32_t>(column), count_, static_cast<std::int32_t>(range.low),
                       static_cast<std::int32_t>(range.high), in);
      break;
    default:
      if (column.type == FieldType::Double) {
        kernels_.rangeDouble(ElementsOf<double>(column), count_, range.lowDouble, range.highDouble, in);
      } else {
        kernels_.range64(ElementsOf<std::int64_t>(column), count_, range.low, range.high, in);
      }
  }
}

void VectorRun::RunRanges(const Step& step) {
  const RangeCondition& condition = plan_.ranges[step.detail];
  const store::Column& column = contents_.columns[condition.field];
  Condition& out = conditions_[step.out];
  out.truth = {};
  for (const Range& range : condition.ranges) {
    Bits in;
    InRange(column, range, in);
    out.truth = Either(out.truth, in);
  }
  const Bits valid = NotNull(column);
  out.truth = Both(out.truth, valid);
  out.falsity = Without(valid, out.truth);
  if (condition.isNegated) {
    std::swap(out.truth, out.falsity);
  }
}

void VectorRun::RunGuard(const Step& step, std::size_t& next) {
  const Node& node = tree_.nodes[step.place];
  const Condition& first = ConditionOf(node, 0);
  const bool isOr = tree_.nodes[node.detail].op == Op::Or;
  Mask mask{Without(masks_.back().active, isOr ? first.truth : first.falsity)};
  if (IsEmpty(mask.active)) {
    mask.isSkipped = true;
    next = step.detail;
  }
  masks_.push_back(mask);
}

void VectorRun::RunLogic(const Step& step) {
  const Node& node = tree_.nodes[step.place];
  const Condition& left = ConditionOf(node, 0);
  const Condition& right = ConditionOf(node, 1);
  const bool isSkipped = masks_.back().isSkipped;
  masks_.pop_back();
  Condition& out = conditions_[step.out];
  if (isSkipped) {
    out = left;
  } else if (step.way == Way::And) {
    out = {Both(left.truth, right.truth), Either(left.falsity, right.falsity)};
  } else {
    out = {Either(left.truth, right.truth), Both(left.falsity, right.falsity)};
  }
}

void VectorRun::RunComparison(const Step& step) {
  const Node& node = tree_.nodes[step.place];
  const Numbers& left = NumbersOf(node, 0);
  const Numbers& right = NumbersOf(node, 1);
  const Bits valid = Both(left.valid, right.valid);
  const auto above = [&](const Numbers& one, const Numbers& other) {
    Bits bits;
    if (step.way == Way::CompareDoubles) {
      kernels_.aboveDouble(reinterpret_cast<const double*>(one.values), reinterpret_cast<const double*>(other.values),
                           count_, bits);
    } else {
      kernels_.above64(one.values, other.values, count_, bits);
    }
    return Both(bits, valid);
  };
  Bits truth{};
  bool isNegated = false;
  switch (node.relation) {
    case Relation::Equal:
    case Relation::NotEqual:
      truth = Without(valid, Either(above(left, right), above(right, left)));
      isNegated = node.relation == Relation::NotEqual;
      break;
    case Relation::Less:
    case Relation::GreaterOrEqual:
      truth = above(right, left);
      isNegated = node.relation == Relation::GreaterOrEqual;
      break;
    default:
      truth = above(left, right);
      isNegated = node.relation == Relation::LessOrEqual;
  }
  const Bits others = Without(valid, truth);
  conditions_[step.out] = isNegated ? Condition{others, truth} : Condition{truth, others};
}

bool VectorRun::RunAddition(const Step& step) {
  const Node& node = tree_.nodes[step.place];
  const Numbers& left = NumbersOf(node, 0);
  const Numbers& right = NumbersOf(node, 1);
  Numbers& out = numbers_[step.out];
  out.valid = Both(left.valid, right.valid);
  out.values = out.own.data();
  const auto run = [&](auto calculate) {
    Bits faulty{};
    for (std::size_t row = 0; row < count_; ++row) {
      faulty[row / 64] |= std::uint64_t{calculate(left.values[row], right.values[row], &out.own[row])} << (row % 64);
    }
    return IsEmpty(Both(faulty, Both(out.valid, masks_.back().active)));
  };
  using Integer = std::int64_t;
  return node.op == Op::Add
             ? run([](Integer l, Integer r, Integer* sum) { return __builtin_add_overflow(l, r, sum); })
             : run([](Integer l, Integer r, Integer* difference) { return __builtin_sub_overflow(l, r, difference); });
}

template <class RowValue>
bool VectorRun::ForActiveRows(const Step& step, RowValue&& valueOf) {
  Cell cell;
  if (IsConditionKind(tree_.nodes[step.place].kind)) {
    Condition& out = conditions_[step.out];
    out = {};
    return ForEach(masks_.back().active, [&](std::size_t row) {
      const bool isThere = valueOf(row, cell);
      PutTruth(out, row, cell);
      return isThere;
    });
  }
  Numbers& out = numbers_[step.out];
  out.valid = {};
  out.values = out.own.data();
  return ForEach(masks_.back().active, [&](std::size_t row) {
    const bool isThere = valueOf(row, cell);
    out.own[row] = IntegerOf(cell);
    if (!cell.isNull) {
      Set(out.valid, row);
    }
    return isThere;
  });
}

Cell VectorRun::CellAt(Place place, std::size_t row) const noexcept {
  const std::uint32_t from = plan_.registers[place];
  if (IsConditionKind(tree_.nodes[place].kind)) {
    const Condition& condition = conditions_[from];
    const bool isTrue = IsSet(condition.truth, row);
    return {.bits = isTrue ? 1U : 0U, .isNull = !isTrue && !IsSet(condition.falsity, row)};
  }
  const bool isValid = IsSet(numbers_[from].valid, row);
  return {.bits = isValid ? static_cast<std::uint64_t>(numbers_[from].values[row]) : 0, .isNull = !isValid};
}

bool VectorRun::RunApply(const Step& step) {
  const Node& node = tree_.nodes[step.place];
  const auto places = tree_.OperandsOf(node);
  cells_.resize(places.size());
  operands_.clear();
  for (std::size_t i = 0; i < places.size(); ++i) {
    operands_.push_back({tree_.nodes[places[i]].kind, cells_[i]});
  }
  return ForActiveRows(step, [&](std::size_t row, Cell& cell) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      cells_[i] = CellAt(places[i], row);
    }
    return Apply(tree_, node, operands_, cell, buffer_) == Fault::None;
  });
}

}  // namespace kiv::query
