#include "kivtools/dataset/Cursor.h"

#include "core/Numbers.h"
#include "dataset/query/CursorState.h"

namespace kiv {

using query::CursorState;

namespace {

/// What the edit proposes or, where it proposes nothing, what the dataset's getter gives.
template <class Result, class Getter>
Result Give(const CursorState& state, FieldSelector field, Getter getter) {
  const Value* const proposed = state.Proposed(field);
  if (proposed == nullptr) {
    return (state.View().*getter)(RowId{state.ReadRow()}, field);
  }
  if (!state.Holds<Result>(field)) {
    state.RefuseType(field);
  }
  const ValueView value(*proposed);
  const auto* const held = std::get_if<Result>(&value.Get());
  return held == nullptr ? Result{} : *held;
}

}  // namespace

Cursor::Cursor(Dataset& dataset) : state_(std::make_unique<CursorState>(dataset.GetStore())) {}
Cursor::~Cursor() = default;
Cursor::Cursor(const Cursor& other) : state_(std::make_unique<CursorState>(*other.state_)) {}
Cursor& Cursor::operator=(const Cursor& other) {
  state_ = std::make_unique<CursorState>(*other.state_);
  return *this;
}
Cursor::Cursor(Cursor&& other) noexcept = default;
Cursor& Cursor::operator=(Cursor&& other) noexcept = default;

void Cursor::OrderBy(TextView order) {
  state_->OrderBy(order);
}
Text Cursor::Order() const {
  return state_->OrderedBy();
}

void Cursor::Filter(TextView condition, const FilterParameters& parameters) {
  state_->FilterBy(condition, parameters);
}
void Cursor::ClearFilter() {
  state_->ClearFilter();
}

bool Cursor::First() {
  return state_->MoveTo(state_->Low());
}

bool Cursor::Last() {
  return state_->MoveToLast();
}

bool Cursor::Next() {
  return state_->MoveBy(true);
}
bool Cursor::Prior() {
  return state_->MoveBy(false);
}
bool Cursor::AtEnd() const {
  return state_->IsBehind();
}
bool Cursor::AtStart() const {
  return state_->IsBefore();
}

bool Cursor::Locate(std::initializer_list<FieldValue> values) {
  return Locate(std::span(values.begin(), values.size()));
}
bool Cursor::Locate(std::span<const FieldValue> values) {
  return state_->Locate(values);
}
bool Cursor::LocateNearest(std::initializer_list<ValueView> values) {
  return LocateNearest(std::span(values.begin(), values.size()));
}
bool Cursor::LocateNearest(std::span<const ValueView> values) {
  return state_->LocateNearest(values);
}
void Cursor::SetRange(std::initializer_list<ValueView> from, std::initializer_list<ValueView> to) {
  SetRange(std::span(from.begin(), from.size()), std::span(to.begin(), to.size()));
}
void Cursor::SetRange(std::span<const ValueView> from, std::span<const ValueView> to) {
  state_->SetRange(from, to);
}
void Cursor::ClearRange() {
  state_->ClearRange();
}

std::size_t Cursor::Count() {
  return state_->High() - state_->Low();
}

std::size_t Cursor::Position() {
  return state_->Position() - state_->Low();
}

void Cursor::GoTo(std::size_t position) {
  if (position >= Count()) {
    Text message = "Cursor: pozitia ";
    AppendDecimal(message, position);
    throw ListIndexError(message + " nu exista");
  }
  state_->MoveTo(state_->Low() + static_cast<std::uint32_t>(position));
}

bool Cursor::GoTo(RowId row) {
  return state_->MoveToRow(static_cast<std::uint32_t>(row));
}
bool Cursor::GoTo(const CursorBookmark& bookmark) {
  return state_->GoTo(bookmark);
}
CursorBookmark Cursor::Bookmark() const {
  return state_->Bookmark();
}
RowId Cursor::Row() const {
  return RowId{state_->RequireRow()};
}

FieldRef Cursor::FieldAt(std::size_t index) const {
  return state_->View().FieldAt(index);
}

bool Cursor::IsNull(FieldSelector field) const {
  return View(field).IsNull();
}
bool Cursor::GetBool(FieldSelector field) const {
  return Give<bool>(*state_, field, &DatasetView::GetBool);
}
std::int64_t Cursor::GetInt64(FieldSelector field) const {
  return Give<std::int64_t>(*state_, field, &DatasetView::GetInt64);
}
double Cursor::GetDouble(FieldSelector field) const {
  return Give<double>(*state_, field, &DatasetView::GetDouble);
}
Currency Cursor::GetCurrency(FieldSelector field) const {
  return Give<Currency>(*state_, field, &DatasetView::GetCurrency);
}
DateTime Cursor::GetDateTime(FieldSelector field) const {
  return Give<DateTime>(*state_, field, &DatasetView::GetDateTime);
}
TextView Cursor::GetText(FieldSelector field) const {
  return Give<TextView>(*state_, field, &DatasetView::GetText);
}
std::u16string_view Cursor::GetWideText(FieldSelector field) const {
  return Give<std::u16string_view>(*state_, field, &DatasetView::GetWideText);
}
Guid Cursor::GetGuid(FieldSelector field) const {
  return Give<Guid>(*state_, field, &DatasetView::GetGuid);
}

BytesView Cursor::GetBytes(FieldSelector field) const {
  if (state_->Proposed(field) != nullptr && state_->Holds<TextView>(field)) {
    const TextView text = GetText(field);
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  return Give<BytesView>(*state_, field, &DatasetView::GetBytes);
}

ValueView Cursor::View(FieldSelector field) const {
  const Value* const proposed = state_->Proposed(field);
  return proposed == nullptr ? state_->View().View(RowId{state_->ReadRow()}, field) : ValueView(*proposed);
}

Value Cursor::Get(FieldSelector field) const {
  const Value* const proposed = state_->Proposed(field);
  return proposed == nullptr ? state_->View().Get(RowId{state_->ReadRow()}, field) : *proposed;
}

void Cursor::Edit() {
  state_->Edit();
}
void Cursor::Insert() {
  state_->Insert();
}
void Cursor::Set(FieldSelector field, ValueView value) {
  state_->Set(field, value);
}
void Cursor::Post() {
  state_->Post();
}
void Cursor::Cancel() noexcept {
  state_->Cancel();
}
bool Cursor::IsEditing() const noexcept {
  return state_->IsEditing();
}
void Cursor::Delete() {
  state_->Delete();
}

}  // namespace kiv
