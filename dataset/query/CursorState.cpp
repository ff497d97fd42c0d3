#include "dataset/query/CursorState.h"

#include <algorithm>

namespace kiv::query {

using store::Cell;
using store::Contents;
using store::RowChange;

namespace {

constexpr std::uint32_t kNone = Contents::kNone;

}  // namespace

CursorState::CursorState(store::Store& store) : followers_(store.GetFollowers()), index_(OrderedIndex::Of(store, {})) {
  followers_->Add(*this);
}

CursorState::CursorState(const CursorState& other)
    : followers_(other.followers_),
      index_(other.index_),
      from_(other.LimitOf(std::vector<ValueView>(other.from_.values.begin(), other.from_.values.end()))),
      to_(other.LimitOf(std::vector<ValueView>(other.to_.values.begin(), other.to_.values.end()))),
      place_(other.place_),
      row_(other.row_) {
  Check();
  followers_->Add(*this);
}

CursorState::~CursorState() {
  followers_->Remove(*this);
}

store::Store& CursorState::GetStore() const {
  if (followers_->GetStore() == nullptr) {
    throw Error("Cursor: setul de date nu mai exista");
  }
  return *followers_->GetStore();
}

void CursorState::Refuse(TextView why) const {
  throw Error(Contents().owner + ": cursorul " + Text(why));
}

std::uint32_t CursorState::RequireRow() const {
  Check();
  if (place_ != Place::On) {
    Refuse("nu sta pe niciun rand");
  }
  return row_;
}

std::uint32_t CursorState::ReadRow() const {
  Check();
  if (edit_ == EditOf::LostRow) {
    Refuse("are in modificare un rand care a fost sters");
  }
  return edit_ == EditOf::Row ? editedRow_ : RequireRow();
}

void CursorState::RequireNoEdit() const {
  Check();
  if (IsEditing()) {
    Refuse("are un rand in modificare");
  }
}

void CursorState::Update() {
  Check();
  index_->Repair();
  if (version_ == index_->Version()) {
    return;
  }
  low_ = from_.cells.empty() ? 0 : index_->Search(from_.cells, false);
  high_ = to_.cells.empty() ? index_->Count() : std::max(low_, index_->Search(to_.cells, true));
  position_.reset();
  version_ = index_->Version();
  if (place_ == Place::On && !IsInRange(row_)) {
    // What was looked up for its row is another now.
    const std::uint32_t next = index_->PositionOf(row_);
    place_ = next < high_ ? Place::On : Place::Behind;
    row_ = next < high_ ? index_->At(next) : row_;
  }
}

void CursorState::OrderBy(TextView order) {
  RequireNoEdit();
  const Order wanted = ParseOrder(Contents(), order);
  auto index = index_->GetFilter() ? std::make_shared<OrderedIndex>(GetStore(), wanted, index_->GetFilter())
                                   : OrderedIndex::Of(GetStore(), wanted);
  index->Repair();
  index_ = std::move(index);
  from_ = {};
  to_ = {};
  version_ = ~std::uint64_t{0};
}

void CursorState::FilterBy(TextView condition, const FilterParameters& parameters) {
  RequireNoEdit();
  UseFilter(Filter(View(), condition, parameters));
}

void CursorState::ClearFilter() {
  RequireNoEdit();
  UseFilter({});
}

void CursorState::UseFilter(std::optional<Filter> filter) {
  auto index = filter ? std::make_shared<OrderedIndex>(GetStore(), index_->GetOrder(), std::move(filter))
                      : OrderedIndex::Of(GetStore(), index_->GetOrder());
  index->Repair();
  index_ = std::move(index);
  version_ = ~std::uint64_t{0};
  if (place_ == Place::On && !IsInRange(row_)) {
    place_ = Place::Before;
  }
}

std::uint32_t CursorState::Low() {
  Update();
  return low_;
}

std::uint32_t CursorState::High() {
  Update();
  return high_;
}

std::uint32_t CursorState::Position() {
  Update();
  if (!position_) {
    position_ = index_->PositionOf(RequireRow());
  }
  return *position_;
}

bool CursorState::MoveTo(std::uint32_t position) {
  RequireNoEdit();
  Update();
  if (position >= high_) {
    place_ = Place::Behind;
    return false;
  }
  row_ = index_->At(position);
  position_ = position;
  place_ = Place::On;
  return true;
}

bool CursorState::MoveToLast() {
  RequireNoEdit();
  if (Low() == High()) {
    place_ = Place::Before;
    return false;
  }
  return MoveTo(high_ - 1);
}

bool CursorState::MoveBy(bool forward) {
  RequireNoEdit();
  Update();
  if (forward) {
    return MoveTo(place_ == Place::Before ? low_ : place_ == Place::Behind ? high_ : Position() + 1);
  }
  const std::uint32_t behind = place_ == Place::Before ? low_ : place_ == Place::Behind ? high_ : Position();
  if (behind == low_) {
    place_ = Place::Before;
    return false;
  }
  return MoveTo(behind - 1);
}

bool CursorState::MoveToRow(std::uint32_t row) {
  RequireNoEdit();
  if (row >= Contents().rowCount || !Contents().IsPresent(row) || !IsInRange(row)) {
    return false;
  }
  Update();
  position_.reset();
  row_ = row;
  place_ = Place::On;
  return true;
}

CursorBookmark CursorState::Bookmark() const {
  CursorBookmark bookmark;
  const std::uint32_t row = RequireRow();
  bookmark.owner_ = followers_.get();
  bookmark.numbering_ = followers_->Numbering();
  bookmark.row_ = static_cast<RowId>(row);
  for (const std::uint16_t field : Contents().schemaData->keyFields) {
    bookmark.key_.push_back(store::ValueOf(Contents().columns[field].type, Contents().Read(row, field)));
  }
  return bookmark;
}

bool CursorState::GoTo(const CursorBookmark& bookmark) {
  RequireNoEdit();
  if (bookmark.owner_ == followers_.get() && bookmark.numbering_ == followers_->Numbering()) {
    return MoveToRow(static_cast<std::uint32_t>(bookmark.row_));
  }
  if (bookmark.key_.empty() || bookmark.key_.size() != Contents().schemaData->keyFields.size()) {
    return false;
  }
  const std::uint32_t found = GetStore().Find(std::vector<ValueView>(bookmark.key_.begin(), bookmark.key_.end()));
  return found != kNone && MoveToRow(found);
}

// Searching.

std::vector<Cell> CursorState::CellsOf(std::span<const ValueView> values) const {
  const Order& order = index_->GetOrder();
  if (values.size() > order.size()) {
    Refuse("are mai putine campuri in ordine decat valorile date");
  }
  std::vector<Cell> cells;
  for (std::size_t i = 0; i < values.size(); ++i) {
    cells.push_back(store::MakeCell(FieldAt(Contents(), order[i].field), values[i], Contents().owner));
  }
  return cells;
}

CursorState::Limit CursorState::LimitOf(std::span<const ValueView> values) const {
  Limit limit;
  const std::vector<Cell> cells = CellsOf(values);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    limit.values.push_back(store::ValueOf(FieldAt(Contents(), index_->GetOrder()[i].field).type, cells[i]));
  }
  // Of the values that are kept: what was given may be gone when they are compared.
  limit.cells = CellsOf(std::vector<ValueView>(limit.values.begin(), limit.values.end()));
  return limit;
}

void CursorState::SetRange(std::span<const ValueView> from, std::span<const ValueView> to) {
  RequireNoEdit();
  Limit first = LimitOf(from);
  Limit last = LimitOf(to);
  from_ = std::move(first);
  to_ = std::move(last);
  version_ = ~std::uint64_t{0};
  if (place_ == Place::On && !IsInRange(row_)) {
    place_ = Place::Before;
  }
}

void CursorState::ClearRange() {
  RequireNoEdit();
  from_ = {};
  to_ = {};
  version_ = ~std::uint64_t{0};
}

bool CursorState::IsInRange(std::uint32_t row) const noexcept {
  return (from_.cells.empty() || index_->Compare(row, from_.cells) >= 0) &&
         (to_.cells.empty() || index_->Compare(row, to_.cells) <= 0) && index_->Admits(row);
}

bool CursorState::LocateNearest(std::span<const ValueView> values) {
  RequireNoEdit();
  const std::vector<Cell> cells = CellsOf(values);
  Update();
  return MoveTo(std::max(low_, index_->Search(cells, false)));
}

bool CursorState::Locate(std::span<const FieldValue> values) {
  RequireNoEdit();
  std::vector<SoughtField> fields;
  for (const FieldValue& value : values) {
    const auto index = static_cast<std::uint16_t>(DatasetView::ResolveAny(Contents(), value.field));
    const FieldDef& field = FieldAt(Contents(), index);
    fields.push_back({{index, field.collation}, store::MakeCell(field, value.value, Contents().owner)});
  }
  Update();
  const std::uint32_t found = Seek(fields);
  return found != kNone && MoveTo(found);
}

bool CursorState::LeadsOrder(std::span<const SoughtField> fields, std::vector<Cell>& cells) const {
  const Order& order = index_->GetOrder();
  for (std::size_t i = 0; i < std::min(fields.size(), order.size()); ++i) {
    const auto found =
        std::ranges::find(fields, order[i].field, [](const SoughtField& sought) { return sought.by.field; });
    // Texts that are equal for the one collation need not be so for another.
    if (found == fields.end() || found->by.collation != order[i].collation) {
      return false;
    }
    cells.push_back(found->cell);
  }
  return cells.size() == fields.size();
}

std::uint32_t CursorState::Seek(std::span<const SoughtField> fields) {
  std::vector<Cell> cells;
  if (LeadsOrder(fields, cells)) {
    const std::uint32_t position = std::max(low_, index_->Search(cells, false));
    return position < high_ && index_->Compare(index_->At(position), cells) == 0 ? position : kNone;
  }
  Order order;
  for (const SoughtField& sought : fields) {
    order.push_back(sought.by);
  }
  OrderReader reader(Contents(), order);
  const auto hasAll = [&](std::uint32_t row) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const FieldType type = FieldAt(Contents(), order[i].field).type;
      if (CompareCells(order[i], type, reader.Read(i, row), fields[i].cell) != 0) {
        return false;
      }
    }
    return true;
  };
  for (std::uint32_t position = low_; position < high_; ++position) {
    if (hasAll(index_->At(position))) {
      return position;
    }
  }
  return kNone;
}

// Following.

void CursorState::Before(const RowChange& change) noexcept {
  following_ = kNone;
  if (place_ == Place::On && row_ == change.row && index_->IsReady()) {
    // The index changes only after the row has.
    const std::uint32_t next = index_->PositionOf(row_) + 1;
    following_ = next < index_->Count() && IsInRange(index_->At(next)) ? index_->At(next) : kNone;
  }
}

void CursorState::After(const RowChange& change) noexcept {
  if (edit_ == EditOf::Row && editedRow_ == change.row && !change.isThere) {
    edit_ = EditOf::LostRow;
  }
  if (place_ == Place::On && row_ == change.row && (!change.isThere || !IsInRange(row_))) {
    place_ = following_ == kNone ? Place::Behind : Place::On;
    row_ = following_;
  }
}

void CursorState::Renumbered(const store::Plane& numbers) noexcept {
  if (place_ == Place::On) {
    row_ = numbers.At<std::uint32_t>(row_);
  }
  if (edit_ == EditOf::Row) {
    editedRow_ = numbers.At<std::uint32_t>(editedRow_);
  }
}

}  // namespace kiv::query
