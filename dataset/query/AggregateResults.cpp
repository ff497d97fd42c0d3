#include <cmath>

#include "core/Numbers.h"
#include "dataset/query/AggregateState.h"
#include "dataset/query/CalculatedColumns.h"

// What groups come to, once they are up to date.

namespace kiv::query {

using store::Cell;
using store::Contents;

void AggregateState::TellFault(const Contents& contents, const Group& group) {
  for (std::uint32_t row = 0; row < contents.rowCount; ++row) {
    if (contents.IsPresent(row)) {
      ReadKey(row);
      if (&groups_.find(std::span<const Cell>(key_))->second == &group) {
        evaluator_->Evaluate(tree_.Root(), contents, row);
      }
    }
  }
}

Value AggregateState::SumOf(const Contents& contents, const Group& group) const {
  if (group.values == 0) {
    return Null{};
  }
  if (kind_ == Kind::Double) {
    if (!std::isfinite(group.total)) {
      throw Error(contents.owner + ": suma nu incape in tipul sau");
    }
    return group.total;
  }
  const auto sum = group.sum.In64Bits();
  if (!sum) {
    throw Error(contents.owner + ": suma nu incape in tipul sau");
  }
  return kind_ == Kind::Currency ? Value(Currency::FromRaw(*sum)) : Value(*sum);
}

Value AggregateState::AverageOf(const Contents& contents, const Group& group) const {
  if (group.values == 0) {
    return Null{};
  }
  const auto count = static_cast<std::int64_t>(group.values);
  if (kind_ == Kind::Currency) {
    return Currency::FromRaw(*group.sum.DividedBy(count));  // between the least and the most of them
  }
  const Value sum = SumOf(contents, group);
  const double total = kind_ == Kind::Double ? std::get<double>(sum) : static_cast<double>(std::get<std::int64_t>(sum));
  return total / static_cast<double>(count);
}

Value AggregateState::Result(const Contents& contents, const Group& group) {
  if (group.faulty > 0) {
    TellFault(contents, group);
  }
  switch (figure_) {
    case Figure::Rows:
      return static_cast<std::int64_t>(group.rows);
    case Figure::Count:
      return static_cast<std::int64_t>(group.values);
    case Figure::Sum:
      return SumOf(contents, group);
    case Figure::Average:
      return AverageOf(contents, group);
    default:
      return group.values == 0 ? Value() : store::ValueOf(TypeOf(kind_), group.extreme);
  }
}

Value AggregateState::Get(std::span<const ValueView> key) {
  Refresh();
  const Contents& contents = Check();
  if (key.size() != by_.size()) {
    Text message = contents.owner + ": gruparea are ";
    AppendDecimal(message, by_.size());
    message += " campuri, nu ";
    AppendDecimal(message, key.size());
    throw Error(message);
  }
  std::vector<Cell> cells;
  for (std::size_t i = 0; i < key.size(); ++i) {
    cells.push_back(store::MakeCell(FieldAt(contents, by_[i].field), key[i], contents.owner));
  }
  static const Group kNone;
  const auto found = groups_.find(std::span<const Cell>(cells));
  return Result(contents, found == groups_.end() ? kNone : found->second);
}

std::vector<AggregateGroup> AggregateState::Groups() {
  Refresh();
  const Contents& contents = Check();
  std::vector<AggregateGroup> given;
  if (by_.empty() && groups_.empty()) {
    given.push_back({{}, Result(contents, Group())});
  }
  for (const auto& [key, group] : groups_) {
    AggregateGroup& one = given.emplace_back();
    for (std::size_t i = 0; i < key.cells.size(); ++i) {
      one.key.push_back(store::ValueOf(types_[i], key.cells[i]));
    }
    one.value = Result(contents, group);
  }
  return given;
}

}  // namespace kiv::query
