/// @file
/// Aggregate: counts, sums, means and extremes over the rows of a dataset, which follow every edit.
#pragma once

#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Filter.h"

namespace kiv {

namespace query {
class AggregateState;
}  // namespace query

/// Rows that have the same values in the fields by which they are grouped.
struct AggregateGroup {
  std::vector<Value> key;
  Value value;
};

/// One figure over all rows, or one for each group of them. It follows every edit and what takes edits back, and always
/// equals to the last bit what a new one would give: integers and amounts are added and taken away in 128 bits at each
/// edit; a group of doubles, or one whose extreme has gone, is gone through again when it is next asked for.
///
///     Aggregate total(linii, "sum(suma * 0.21)");
///     Aggregate lines(linii, "count(*)", "partener");
///     total.Get()             // Value(259.2576_lei)
///     lines.Get({"Alfa"})     // Value(std::int64_t{2})
///
/// Everything but its end throws Error when the dataset is gone.
class Aggregate {
 public:
  /// `what` is `count(*)`, the rows; `count(...)`, those where an expression is not null; `sum(...)` and `avg(...)` of
  /// a number, `min(...)` and `max(...)` of anything but a Blob or a condition, texts in the collation of their field.
  /// docs/filters.md has the language of what stands in the parentheses. `groupBy` are names of fields as
  /// Cursor::OrderBy() takes them; rows are of one group where that order has them as equal. Throws FilterError for a
  /// text that is none of these, Error for fields that do not exist.
  KIV_API Aggregate(Dataset& dataset, TextView what, TextView groupBy = {}, const FilterParameters& parameters = {});
  KIV_API ~Aggregate();
  KIV_API Aggregate(Aggregate&& other) noexcept;
  KIV_API Aggregate& operator=(Aggregate&& other) noexcept;

  /// The figure of the group with that key, of all rows where they are not grouped: an integer for count and for the
  /// sum of integers, an amount for sum and avg of amounts (halves to even), a double for sum of doubles and avg of the
  /// rest, for min and max a value; null, and 0 for count, where there is nothing. Throws Error for another count of
  /// key fields and for a sum that leaves 64 bits or is not finite, FilterError where the expression has no value in a
  /// row of the group.
  [[nodiscard]] KIV_API Value Get(std::initializer_list<ValueView> key = {}) const;
  /// The same from values collected at run time.
  [[nodiscard]] KIV_API Value Get(std::span<const ValueView> key) const;
  /// All groups in the order of their keys; one, with an empty key, where rows are not grouped. Throws as Get() does.
  ///
  ///     for (const AggregateGroup& group : lines.Groups()) Print(group.key[0], group.value);
  [[nodiscard]] KIV_API std::vector<AggregateGroup> Groups() const;

 private:
  std::unique_ptr<query::AggregateState> state_;
};

}  // namespace kiv
