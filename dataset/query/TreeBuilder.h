#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>

#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {

/// Throws FilterError where that part of a tree is no condition.
void RequireCondition(const Tree& tree, Place operand);

/// Puts a tree together: each node gets its kind, what has constants only is worked out at once. Throws FilterError for
/// operands that do not go together and for more nodes than there may be.
class TreeBuilder {
 public:
  TreeBuilder(const store::Contents& contents, const FilterParameters& parameters, TextView text, TextView own);

  Place AddConstant(Kind kind, store::Cell cell, Span span);
  Place AddField(TextView name, Span span);
  Place AddParameter(TextView name, Span span);
  Place AddNot(Place operand, Span span);
  /// What stands between the operands of an and or an or.
  Place AddGuard(Place first);
  Place AddLogic(Op op, Place guard, Place second, Span span);
  Place AddIsNull(Place operand, Span span);
  Place AddCompare(Relation relation, Place left, Place right, Span span);
  Place AddBetween(Place value, Place from, Place to, Span span);
  Place AddIn(Place value, std::span<const Place> items, Span span);
  Place AddLike(Place value, Place pattern, std::optional<Place> escape, Span span);
  Place AddNegate(Place operand, Span span);
  Place AddArithmetic(Op op, Place left, Place right, Span span);
  /// What another dataset has for a key, of that field's kind.
  Place AddLookup(Place key, std::shared_ptr<const LookupTarget> target, const FieldDef& wanted, Span span);
  Place AddCall(TextView name, std::span<const Place> arguments, Span span);

  [[nodiscard]] const Tree& Current() const noexcept { return tree_; }
  // The move of a deque allocates.
  [[nodiscard]] Tree Finish() && { return std::move(tree_); }

 private:
  Place Push(Node node, std::span<const Place> operands);
  Place AddTree(const Tree& tree, Span span);
  Place PushFolded(Node node, std::span<const Place> operands);
  Place PushFolded(Node node, std::initializer_list<Place> operands) {
    return PushFolded(node, std::span(operands.begin(), operands.size()));
  }
  void MakeComparable(Place left, Place right, Span span);
  bool TurnIntoKindOf(Place constant, Kind kind);
  [[noreturn]] void RefuseOperand(Place operand, TextView operation) const;
  [[nodiscard]] Kind KindOf(Place place) const noexcept { return tree_.nodes[place].kind; }
  [[nodiscard]] Kind ResultOf(Op op, Place left, Place right) const;
  [[nodiscard]] TextView TextOfConstant(Place place, TextView what) const;

  const store::Contents& contents_;
  const FilterParameters& parameters_;
  TextView own_;
  Tree tree_;
};

}  // namespace kiv::query
