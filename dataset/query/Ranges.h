#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "dataset/query/Tree.h"
#include "dataset/store/SchemaData.h"

namespace kiv::query {

/// The values of a field from one to another, in the units of its column; of doubles the two of them apart.
struct Range {
  std::int64_t low = std::numeric_limits<std::int64_t>::min();
  std::int64_t high = std::numeric_limits<std::int64_t>::max();
  double lowDouble = -std::numeric_limits<double>::infinity();
  double highDouble = std::numeric_limits<double>::infinity();
  bool isEmpty = false;
};

/// A condition on one field alone: its values are in one of the ranges, or in none of them.
struct RangeCondition {
  std::uint32_t field = 0;
  std::vector<Range> ranges;
  bool isNegated = false;
};

/// The ranges that a comparison, a between or an in stands for; empty where it is none of a field with constants, or
/// one whose constants are no values of the column.
std::optional<RangeCondition> RangesOf(const Tree& tree, const Node& node, const store::SchemaData& schema);

}  // namespace kiv::query
