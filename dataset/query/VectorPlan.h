#pragma once

#include <cstdint>
#include <vector>

#include "dataset/query/Ranges.h"
#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"

namespace kiv::query {

/// How a part of an expression is worked out for a batch of rows.
enum class Way : std::uint8_t {
  Rows,      ///< row by row, with all that is below it
  Entries,   ///< once for each text of a dictionary, with all that is below it; then by the rows' codes
  Constant,  ///< the same in every row
  Field,     ///< a column of numbers or flags
  NullsOf,   ///< whether a column is null
  Ranges,    ///< whether a column is in certain ranges
  Not,
  Guard,
  And,
  Or,
  CompareIntegers,  ///< two numbers of one kind
  CompareDoubles,
  AddIntegers,  ///< a sum or difference of one kind
  Apply,        ///< any node of values that need no bytes, row by row
};

/// One part. Conditions and numbers have registers of their own.
struct Step {
  Way way;
  Place place;
  std::uint32_t out = 0;
  /// Of a guard the step to which it skips, of ranges and entries the place in their list.
  std::uint32_t detail = 0;
};

/// The steps of an expression over vectors, in their order.
struct VectorPlan {
  VectorPlan(const Tree& tree, const store::Contents& contents);

  std::vector<Step> steps;
  std::vector<RangeCondition> ranges;
  /// The field of each step over a dictionary.
  std::vector<std::uint32_t> entryFields;
  /// The register of each node that has one.
  std::vector<std::uint32_t> registers;
  std::uint32_t conditions = 0;
  std::uint32_t numbers = 0;
};

/// Whether the values of a kind stand in a register of conditions rather than one of numbers.
constexpr bool IsConditionKind(Kind kind) noexcept {
  return kind == Kind::Boolean || kind == Kind::Null;
}

}  // namespace kiv::query
