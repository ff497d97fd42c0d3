#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "dataset/query/Evaluator.h"
#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"

namespace kiv::query {

/// A column without values of its own: an expression over the fields of its row. What refers to it takes the expression
/// in, so that nothing has to be kept up to date.
class CalculatedColumn {
 public:
  CalculatedColumn(FieldDef field, std::shared_ptr<const Tree> tree);

  [[nodiscard]] const FieldDef& Field() const noexcept { return field_; }
  [[nodiscard]] const std::shared_ptr<const Tree>& GetTree() const noexcept { return tree_; }
  /// The value in a row, borrowed until the next one is asked for. Throws FilterError.
  [[nodiscard]] const store::Cell& Evaluate(const store::Contents& contents, std::uint32_t row) const {
    return evaluator_.Evaluate(tree_->Root(), contents, row);
  }
  /// The same where the fields have other values than the row.
  [[nodiscard]] const store::Cell& EvaluateOf(const std::function<store::Cell(std::uint32_t field)>& fields,
                                              std::uint32_t row) const {
    return evaluator_.EvaluateOf(tree_->Root(), fields, row);
  }

  /// A value where getters read it: that of row 0, and the bytes of a text beside it.
  struct Shown : store::Column {
    using Column::Column;
    std::string_view bytes;
  };
  /// The value in a row, as Evaluate().
  [[nodiscard]] const Shown& Show(const store::Contents& contents, std::uint32_t row) const;

 private:
  FieldDef field_;
  std::shared_ptr<const Tree> tree_;
  // A dataset is used from one thread at a time, and a snapshot has no such columns.
  mutable Evaluator evaluator_;
  mutable Shown shown_;
};

/// The calculated columns of a dataset. They are counted behind its fields.
class CalculatedColumns {
 public:
  void Add(std::shared_ptr<const CalculatedColumn> column) { columns_.push_back(std::move(column)); }
  [[nodiscard]] std::size_t Count() const noexcept { return columns_.size(); }
  [[nodiscard]] const CalculatedColumn& At(std::size_t place) const noexcept { return *columns_[place]; }
  [[nodiscard]] std::optional<std::size_t> IndexOf(TextView name) const;

 private:
  std::vector<std::shared_ptr<const CalculatedColumn>> columns_;
};

/// The calculated column that a place behind the fields stands for; null for that of a field.
inline const CalculatedColumn* CalculatedAt(const store::Contents& contents, std::size_t index) noexcept {
  return index < contents.columns.size() ? nullptr : &contents.calculated->At(index - contents.columns.size());
}
/// The place of the field or calculated column of that name.
std::optional<std::size_t> IndexOfAny(const store::Contents& contents, TextView name);
/// What the field or calculated column at that place is.
inline const FieldDef& FieldAt(const store::Contents& contents, std::size_t index) noexcept {
  const CalculatedColumn* const column = CalculatedAt(contents, index);
  return column != nullptr ? column->Field() : contents.schemaData->fields[index];
}

/// Adds a calculated column, and one that looks up. Throws as Dataset::Calculate() and Lookup(); nothing has changed
/// then.
void AddCalculation(store::Store& store, TextView name, TextView expression);
void AddLookup(store::Store& store, std::size_t field, store::Store& other, TextView key, TextView wanted,
               TextView name);

}  // namespace kiv::query
