#include "dataset/query/OrderedIndex.h"

#include <array>

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
      keys_(contents_, order_),
      rows_(order.empty() ? RowList::By::Numbers : RowList::By::Keys),
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
  std::vector<std::uint32_t> rows =
      filter_ ? PassingRows(*followers_->GetStore(), filter_->GetTree()) : PresentRows(contents_);
  isStale_ = true;  // the keys of the rows that it has are no longer those that it will compare with
  keys_.Begin(rows.size());
  // Read in the order of the rows, which is much faster than in the one that they are put into.
  const std::unique_ptr<std::uint64_t[]> keys = KeysOf(rows);
  SortRows(contents_, order_, rows);
  rows_.Assign(rows, [&keys](std::uint32_t row) { return keys[row]; });
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

std::unique_ptr<std::uint64_t[]> OrderedIndex::KeysOf(std::span<const std::uint32_t> rows) {
  if (order_.empty()) {
    return nullptr;
  }
  auto keys = std::make_unique_for_overwrite<std::uint64_t[]>(contents_.rowCount);
  for (std::array<PackedKey, 256> packed; !rows.empty();) {
    const auto some = rows.first(std::min(rows.size(), packed.size()));
    packed = {};
    keys_.Pack(some, sought_, packed);
    for (std::size_t i = 0; i < some.size(); ++i) {
      keys[some[i]] = packed[i].bits;
    }
    rows = rows.subspan(some.size());
  }
  return keys;
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

RowList::Place OrderedIndex::PlaceOf(std::uint32_t row, const PackedKey& key) noexcept {
  if (!key.isExact) {
    ReadCells(row);
  }
  return rows_.FirstNot(key, [&](std::uint32_t other) {
    const int order = other == row || key.isExact ? 0 : CompareWithSought(other);
    return order < 0 || (order == 0 && other < row);
  });
}

std::uint32_t OrderedIndex::Search(std::span<const Cell> cells, bool after) const noexcept {
  return rows_.PositionOf(rows_.FirstNot(keys_.OfCells(cells), [&](std::uint32_t row) {
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
  keys_.Extend();
  rows_.Reserve(changes);
}

void OrderedIndex::Before(const store::RowChange& change) noexcept {
  leaving_.reset();
  if (IsReady() && change.wasThere && Concerns(change)) {
    const RowList::Place place = PlaceOf(change.row, KeyOf(change.row));
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
  if (leaving_) {
    rows_.Erase(*leaving_);
  }
  if (change.isThere && Admits(change.row)) {
    const PackedKey key = KeyOf(change.row);
    rows_.Insert(PlaceOf(change.row, key), change.row, key.bits);
  }
  ++version_;
}

}  // namespace kiv::query
