#include "dataset/query/OrderedIndex.h"

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
      cells_(order.size()),
      filter_(std::move(filter)) {
  followers_->Add(*this);
}

OrderedIndex::~OrderedIndex() {
  followers_->Remove(*this);
}

void OrderedIndex::Repair() {
  if (!isStale_ && !hasFailed_) {
    return;
  }
  std::vector<std::uint32_t> rows = SortedRows(contents_, order_);
  if (filter_) {
    std::erase_if(rows, [this](std::uint32_t row) { return !filter_->Test(RowId{row}); });
  }
  rows_.Assign(rows, [this](std::uint32_t row) { return KeyOf(row); });
  ++version_;
  isStale_ = false;
  hasFailed_ = false;
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
    cells_[i] = contents_.Read(row, order_[i].field);
  }
}

PackedKey OrderedIndex::KeyOf(std::uint32_t row) noexcept {
  ReadCells(row);
  return Pack(contents_, order_, cells_);
}

int OrderedIndex::Compare(std::uint32_t row, std::span<const Cell> cells) const noexcept {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const store::Column& column = contents_.columns[order_[i].field];
    if (const int order = CompareCells(order_[i], column.type, contents_.Read(row, order_[i].field), cells[i]);
        order != 0) {
      return order;
    }
  }
  return 0;
}

RowList::Place OrderedIndex::PlaceOf(std::uint32_t row) noexcept {
  const PackedKey key = KeyOf(row);
  return rows_.FirstNot(key, [this, row](std::uint32_t other) {
    const int order = other == row ? 0 : Compare(other, cells_);
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
  return filter_ || change.wasThere != change.isThere || std::ranges::any_of(order_, [&](const OrderField& by) {
           return std::ranges::find(change.fields, by.field) != change.fields.end();
         });
}

void OrderedIndex::Prepare(std::uint32_t changes) {
  if (isStale_) {
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
  if (!isStale_ && change.wasThere && Concerns(change)) {
    const RowList::Place place = PlaceOf(change.row);
    if (rows_.Has(place, change.row)) {
      leaving_ = place;
    }
  }
}

void OrderedIndex::After(const store::RowChange& change) noexcept {
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
