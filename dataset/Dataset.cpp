#include "kivtools/dataset/Dataset.h"

#include "dataset/query/CalculatedColumns.h"
#include "dataset/store/Store.h"

namespace kiv {

Dataset::Dataset(TextView name, const Schema& schema) : Dataset(std::make_unique<store::Store>(name, schema)) {}

Dataset::Dataset(std::unique_ptr<store::Store> built) noexcept
    : DatasetView(&built->GetContents()), store_(std::move(built)) {}

Dataset::~Dataset() = default;
Dataset::Dataset(Dataset&& other) noexcept = default;
Dataset& Dataset::operator=(Dataset&& other) noexcept = default;

RowId Dataset::Insert(std::initializer_list<FieldValue> values) {
  return Insert(std::span(values.begin(), values.size()));
}

RowId Dataset::Insert(std::span<const FieldValue> values) {
  return static_cast<RowId>(store_->Insert(values));
}

void Dataset::Update(RowId row, std::initializer_list<FieldValue> values) {
  Update(row, std::span(values.begin(), values.size()));
}

void Dataset::Update(RowId row, std::span<const FieldValue> values) {
  store_->Update(NumberOf(row), values);
}

void Dataset::Set(RowId row, FieldSelector field, ValueView value) {
  const FieldValue one{field, value};
  store_->Update(NumberOf(row), {&one, 1});
}

void Dataset::Delete(RowId row) {
  store_->Delete(NumberOf(row));
}

std::optional<RowId> Dataset::Find(std::initializer_list<ValueView> key) const {
  return Find(std::span(key.begin(), key.size()));
}

std::optional<RowId> Dataset::Find(std::span<const ValueView> key) const {
  const std::uint32_t row = store_->Find(key);
  return row == kNoRow ? std::nullopt : std::optional(static_cast<RowId>(row));
}

std::uint32_t Dataset::FindNumber(std::int64_t key) const {
  static_assert(kNoRow == store::Contents::kNone);
  std::uint32_t row = kNoRow;
  if (store_->FindNumber(key, row)) [[likely]] {
    return row;
  }
  const ValueView value(key);
  return store_->Find({&value, 1});
}

FieldRef Dataset::Calculate(TextView name, TextView expression) {
  query::AddCalculation(*store_, name, expression);
  return Field(name);
}

FieldRef Dataset::Lookup(FieldSelector field, Dataset& other, TextView key, TextView wanted, TextView name) {
  const TextView own = name.empty() ? wanted : name;
  query::AddLookup(*store_, ResolveAny(GetContents(), field), other.GetStore(), key, wanted, own);
  return Field(own);
}

std::vector<FieldDef> Dataset::CalculatedFields() const {
  std::vector<FieldDef> fields;
  const auto& columns = GetContents().calculated;
  for (std::size_t i = 0; columns != nullptr && i < columns->Count(); ++i) {
    fields.push_back(columns->At(i).Field());
  }
  return fields;
}

Snapshot Dataset::TakeSnapshot() {
  return Snapshot(store_->CopyContents());
}

void Dataset::AddListener(DatasetListener& listener) {
  store_->AddListener(listener);
}
void Dataset::RemoveListener(DatasetListener& listener) noexcept {
  store_->RemoveListener(listener);
}
void Dataset::BeginUpdate() noexcept {
  store_->BeginUpdate();
}
void Dataset::EndUpdate() noexcept {
  store_->EndUpdate();
}
void Dataset::Compact() {
  store_->Compact();
}

}  // namespace kiv
