#include "dataset/query/OrderedIndex.h"

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Candidates.h"
#include "dataset/query/Lookup.h"
#include "dataset/query/RowSort.h"

namespace kiv::query {

using store::Cell;

std::shared_ptr<OrderedIndex> OrderedIndex::Of(store::Store& store, const Order& order) {
  std::shared_ptr<OrderedIndex> found;
  store.GetFollowers()->ForEach([&](store::Follower& follower) {
    if (auto* const index = dynamic_cast<OrderedIndex*>(&follower);
        index != nullptr && index->order_ == order && !index->filter_) {
      found = index->shared_from_this();
    }
  });
  return found != nullptr ? found : std::make_shared<OrderedIndex>(store, order);
}

OrderedIndex::OrderedIndex(store::Store& store, const Order& order, std::optional<Filter> filter)
    : followers_(store.GetFollowers()),
      contents_(store.GetContents()),
      order_(order),
      sought_(contents_, order_),
      met_(contents_, order_),
      cells_(order.size()),
      filter_(std::move(filter)) {
  for (const OrderField& by : order_) {
    types_.push_back(FieldAt(contents_, by.field).type);
  }
  followers_->Add(*this);
}

OrderedIndex::~OrderedIndex() {
  followers_->Remove(*this);
}

std::uint64_t OrderedIndex::CurrentLookupVersion() const noexcept {
  return met_.Version() + (filter_ ? LookupVersion(filter_->GetTree()) : 0);
}

void OrderedIndex::Repair() {
  if (IsReady() && !hasFailed_ && !sought_.HasFailed() && !met_.HasFailed()) {
    return;
  }
  std::vector<std::uint32_t> rows;
  if (filter_) {
    rows = PassingRows(*followers_->GetStore(), filter_->GetTree());
    SortRows(contents_, order_, rows);
  } else {
    rows = SortedRows(contents_, order_);
  }
  rows_.Assign(rows, [this](std::uint32_t row) { return KeyOf(row); });
  ++version_;
  lookupVersion_ = CurrentLookupVersion();
  isStale_ = false;
  hasFailed_ = false;
  sought_.ForgetFailure();
  met_.ForgetFailure();
}

bool OrderedIndex::Admits(std::uint32_t row) const noexcept {
  try {
    return !filter_ || filter_->Test(RowId{row});
  } catch (...) {
    hasFailed_ = true;
    return true;
  }
}

void OrderedIndex::ReadCells(std::uint32_t row) noexcept {
  for (std::size_t i = 0; i < order_.size(); ++i) {
    cells_[i] = sought_.TryRead(i, row);
  }
}

PackedKey OrderedIndex::KeyOf(std::uint32_t row) noexcept {
  ReadCells(row);
  return Pack(contents_, order_, cells_);
}

int OrderedIndex::CompareWithSought(std::uint32_t row) const noexcept {
  for (std::size_t i = 0; i < order_.size(); ++i) {
    const Cell& sought = cells_[i];
    if (order_[i].field < contents_.columns.size()) {
      const Cell met = contents_.columns[order_[i].field].Load(row);
      // Equal codes are equal texts.
      if (met.isNull == sought.isNull && met.bits == sought.bits && met.more == sought.more) {
        continue;
      }
    }
    if (const int order = CompareCells(order_[i], types_[i], met_.TryRead(i, row), sought); order != 0) {
      return order;
    }
  }
  return 0;
}

int OrderedIndex::Compare(std::uint32_t row, std::span<const Cell> cells) const noexcept {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (const int order = CompareCells(order_[i], types_[i], met_.TryRead(i, row), cells[i]); order != 0) {
      return order;
    }
  }
  return 0;
}

RowList::Place OrderedIndex::PlaceOf(std::uint32_t row) noexcept {
  const PackedKey key = KeyOf(row);
  return rows_.FirstNot(key, [this, row](std::uint32_t other) {
    const int order = other == row ? 0 : CompareWithSought(other);
    return order < 0 || (order == 0 && other < row);
  });
}

std::uint32_t OrderedIndex::Search(std::span<const Cell> cells, bool after) const noexcept {
  return rows_.PositionOf(rows_.FirstNot(Pack(contents_, order_, cells), [&](std::uint32_t row) {
    const int order = Compare(row, cells);
    return order < 0 || (order == 0 && after);
  }));
}

bool OrderedIndex::Concerns(const store::RowChange& change) const noexcept {
  return filter_ || change.wasThere != change.isThere ||
         std::ranges::any_of(change.fields, [this](std::uint16_t field) { return sought_.Reads(field); });
}

void OrderedIndex::Prepare(std::uint32_t changes) {
  if (!IsReady()) {
    try {
      Repair();
    } catch (const FilterError&) {
      return;  // the edit may be the one that puts it right
    }
  }
  rows_.Reserve(changes);
}

void OrderedIndex::Before(const store::RowChange& change) noexcept {
  leaving_.reset();
  if (IsReady() && change.wasThere && Concerns(change)) {
    const RowList::Place place = PlaceOf(change.row);
    if (rows_.Has(place, change.row)) {
      leaving_ = place;
    }
  }
}

void OrderedIndex::After(const store::RowChange& change) noexcept {
  if (!isStale_ && !IsReady()) {
    BecomeStale();  // a row that was looked up has changed
  }
  if (isStale_ || !Concerns(change)) {
    return;
  }
  const auto keyOf = [this](std::uint32_t row) { return KeyOf(row); };
  if (leaving_) {
    rows_.Erase(*leaving_, keyOf);
  }
  if (change.isThere && Admits(change.row)) {
    rows_.Insert(PlaceOf(change.row), change.row, keyOf);
  }
  ++version_;
}

}  // namespace kiv::query
