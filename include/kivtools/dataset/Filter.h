/// @file
/// Filter and Expression: conditions on the rows of a dataset, and values worked out from them, written as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Row.h"
#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/Value.h"

namespace kiv {

namespace query {
struct Tree;
}  // namespace query

/// A text that is no expression, or an expression that has no value in a row: division by zero, a result beyond what
/// its type can hold.
///
///     try { Filter(linii, "suma > "); }
///     catch (const FilterError& error) { error.what(); }   // "Filtru: expresia se incheie prea devreme (pozitia 8)"
class KIV_API FilterError : public Error {
 public:
  FilterError(std::size_t position, const std::string& message);
  ~FilterError() override;

  /// Where in the text the fault begins, in bytes from 0. Example: 7 for "suma > ".
  [[nodiscard]] std::size_t Position() const noexcept { return position_; }

 private:
  std::size_t position_;
};

/// What stands for `:name` in a text. Example: `{"de_la", DateTime::Encode(2026, 1, 1)}`.
struct FilterParameter {
  /// Without the colon; case does not count.
  Text name;
  Value value;
};
using FilterParameters = std::vector<FilterParameter>;

/// A value worked out from the fields of a row; docs/filters.md describes the language. It is compiled once, is cheap
/// to copy and is used as long as its dataset is; Compact() and edits do it no harm.
///
///     Expression tva(linii, "suma * 0.21");
///     tva.Evaluate(row)   // Value(210_lei) where suma is 1000
class Expression {
 public:
  /// Compiles the text. Parameters are bound now: their values are copied, what is worked out from them alone is worked
  /// out now, and so is Today(). Throws FilterError, naming the place, for a text that is no expression.
  KIV_API Expression(const DatasetView& rows, TextView text, const FilterParameters& parameters = {});

  /// The type of its values. Example: FieldType::Currency for "suma * 0.21".
  [[nodiscard]] KIV_API FieldType Type() const noexcept;
  /// The value in a row. Throws Error for a row that does not exist or is deleted, FilterError, naming the part of the
  /// text and the row, where a number is divided by zero or a result leaves what its type can hold.
  [[nodiscard]] KIV_API Value Evaluate(RowId row) const;

  /// For the library's own parts.
  [[nodiscard]] const query::Tree& GetTree() const noexcept { return *tree_; }

 private:
  const store::Contents* contents_;
  std::shared_ptr<const query::Tree> tree_;
};

/// A condition on rows. A row passes where it is true; where it is false or, for a null, unknown, it does not.
///
///     const Filter large(linii, "suma > :prag and not EsteIBAN(cont)", {{"prag", 1000_lei}});
///     for (RowId row : large.Select()) Print(linii, row);
class Filter {
 public:
  /// Compiles the text as Expression does, and throws as it does; also for an expression that is no condition.
  KIV_API Filter(const DatasetView& rows, TextView text, const FilterParameters& parameters = {});

  /// Whether the row passes. Throws as Expression::Evaluate() does.
  [[nodiscard]] KIV_API bool Test(RowId row) const;
  /// The rows that pass, in their order. It goes through columns, not rows: many times faster than Test() for each.
  /// Throws FilterError as Test() does for the first row that has no value.
  [[nodiscard]] KIV_API std::vector<RowId> Select() const;
  /// How many pass. Throws as Select() does. Example: `Filter(linii, "suma > 1000").Count()`.
  [[nodiscard]] KIV_API std::size_t Count() const;
  /// The sum of a field of integers, amounts or doubles over the rows that pass: an integer, an amount or a double;
  /// null where none of them has a value. Throws as Select() does, Error for a field that does not exist and where the
  /// type cannot hold the sum, InvalidCast for a field of another type.
  ///
  ///     Filter(linii, "data >= {2026-01-01}").Sum("suma")   // Value(1234.56_lei)
  [[nodiscard]] KIV_API Value Sum(TextView field) const;

  /// For the library's own parts.
  [[nodiscard]] const query::Tree& GetTree() const noexcept { return *tree_; }

 private:
  const store::Contents* contents_;
  std::shared_ptr<const query::Tree> tree_;
};

}  // namespace kiv
