#include <algorithm>

#include "dataset/query/CursorState.h"

// The edits of a cursor, and what its row is while they go on.

namespace kiv::query {

void CursorState::Edit() {
  RequireNoEdit();
  editedRow_ = RequireRow();
  edit_ = EditOf::Row;
}

void CursorState::Insert() {
  RequireNoEdit();
  std::vector<std::pair<std::uint16_t, Value>> defaults;
  for (const FieldDef& definition : Contents().schemaData->fields) {
    defaults.emplace_back(
        static_cast<std::uint16_t>(defaults.size()),
        store::ValueOf(definition.type, store::MakeCell(definition, definition.defaultValue, Contents().owner)));
  }
  proposed_ = std::move(defaults);
  edit_ = EditOf::NewRow;
}

void CursorState::Set(FieldSelector field, ValueView value) {
  const auto index = static_cast<std::uint16_t>(DatasetView::Resolve(Contents(), field));
  if (!IsEditing()) {
    Refuse("nu are niciun rand in modificare");
  }
  const FieldDef& definition = Contents().schemaData->fields[index];
  Value made = store::ValueOf(definition.type, store::MakeCell(definition, value, Contents().owner));
  const auto found = std::ranges::find(proposed_, index, &std::pair<std::uint16_t, Value>::first);
  if (found != proposed_.end()) {
    found->second = std::move(made);
  } else {
    proposed_.emplace_back(index, std::move(made));
  }
}

void CursorState::Post() {
  store::Store& store = GetStore();
  if (!IsEditing()) {
    Refuse("nu are niciun rand in modificare");
  }
  const Rows view = View();
  std::vector<FieldValue> values;
  for (const auto& [field, value] : proposed_) {
    values.push_back({view.FieldAt(field), value});
  }
  const bool isNew = edit_ == EditOf::NewRow;
  std::uint32_t row = 0;
  if (isNew) {
    row = store.Insert(values);
  } else {
    store.Update(ReadRow(), values);
  }
  Cancel();
  if (isNew && IsInRange(row)) {
    row_ = row;
    place_ = Place::On;
    position_.reset();
  }
}

void CursorState::Cancel() noexcept {
  edit_ = EditOf::None;
  proposed_.clear();
}

void CursorState::Delete() {
  RequireNoEdit();
  const std::uint32_t row = RequireRow();
  GetStore().Delete(row);
}

const Value* CursorState::Proposed(FieldSelector field) const {
  const std::size_t index = DatasetView::ResolveAny(Contents(), field);
  if (const CalculatedColumn* const column = CalculatedAt(Contents(), index); column != nullptr && IsEditing()) {
    return ProposedBy(*column);
  }
  const auto found = std::ranges::find(proposed_, index, &std::pair<std::uint16_t, Value>::first);
  return found == proposed_.end() ? nullptr : &found->second;
}

/// What a calculated column comes to with the values of the edit.
const Value* CursorState::ProposedBy(const CalculatedColumn& column) const {
  const store::Contents& contents = Contents();
  const std::uint32_t row = edit_ == EditOf::NewRow ? Evaluator::kNoRow : ReadRow();
  const auto valueOf = [&](std::uint32_t field) {
    const auto found = std::ranges::find(proposed_, field, &std::pair<std::uint16_t, Value>::first);
    return found == proposed_.end()
               ? contents.Read(row, field)
               : store::MakeCell(contents.schemaData->fields[field], found->second, contents.owner);
  };
  calculated_ = store::ValueOf(column.Field().type, column.EvaluateOf(valueOf, row));
  return &calculated_;
}

void CursorState::RefuseType(FieldSelector field) const {
  const FieldDef& definition = FieldAt(Contents(), DatasetView::ResolveAny(Contents(), field));
  throw InvalidCast(Contents().owner + ": campul " + store::Quoted(definition.name) + " este de tip " +
                    store::TraitsOf(definition.type).name + " si nu se citeste ca alt fel de valoare");
}

}  // namespace kiv::query
