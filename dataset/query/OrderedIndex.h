#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "dataset/query/OrderReader.h"
#include "dataset/query/RowKeys.h"
#include "dataset/query/RowList.h"
#include "dataset/store/Followers.h"
#include "dataset/store/Store.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {

/// The rows of a dataset in an order, which follows every edit. Cursors with the same order share one. After a load or
/// a compaction it is made anew when it is next asked for something.
///
/// With a filter it has the rows that pass, and is nobody's but its cursor's and that one's clones. A row for which the
/// filter has no value is not left out: the next one who asks is told. So it is where a calculated field of the order
/// has none. What look-ups find may change without the rows: then it is made anew, too.
class OrderedIndex final : public store::Follower, public std::enable_shared_from_this<OrderedIndex> {
 public:
  /// The index of that order that the store has, or a new one. Throws std::bad_alloc.
  static std::shared_ptr<OrderedIndex> Of(store::Store& store, const Order& order);
  /// For Of().
  OrderedIndex(store::Store& store, const Order& order, std::optional<Filter> filter = {});
  ~OrderedIndex() override;
  OrderedIndex(const OrderedIndex&) = delete;
  OrderedIndex& operator=(const OrderedIndex&) = delete;

  [[nodiscard]] const Order& GetOrder() const noexcept { return order_; }
  [[nodiscard]] const std::optional<Filter>& GetFilter() const noexcept { return filter_; }
  /// Whether the row passes the filter, if there is one, or nobody can tell.
  [[nodiscard]] bool Admits(std::uint32_t row) const noexcept;
  /// Grows with every change of the rows or of their order.
  [[nodiscard]] std::uint64_t Version() const noexcept { return version_; }
  /// Sees to it that the index holds what the columns do. Throws std::bad_alloc, and FilterError for a row in which the
  /// filter has no value. Everything below needs it.
  void Repair();
  /// Whether it may be asked for something without that.
  [[nodiscard]] bool IsReady() const noexcept {
    return !isStale_ && lookupVersion_ == CurrentLookupVersion() && keys_.AreValid();
  }
  /// Whether all rows are in it, and it may be asked for them.
  [[nodiscard]] bool HoldsAllRows() const noexcept {
    return !filter_ && IsReady() && !hasFailed_ && !sought_.HasFailed() && !met_.HasFailed();
  }

  [[nodiscard]] std::uint32_t Count() const noexcept { return rows_.Count(); }
  /// The row at a position, from 0.
  [[nodiscard]] std::uint32_t At(std::uint32_t position) const noexcept { return rows_.At(position); }
  /// The position of a row that is there.
  [[nodiscard]] std::uint32_t PositionOf(std::uint32_t row) noexcept {
    return rows_.PositionOf(PlaceOf(row, KeyOf(row)));
  }
  /// The position of the first row whose first fields are not before these cells, or with `after` the first that is
  /// behind all rows with equal ones. Codes do not count.
  [[nodiscard]] std::uint32_t Search(std::span<const store::Cell> cells, bool after) const noexcept;
  /// How the first fields of a row stand to these cells: below 0 before them.
  [[nodiscard]] int Compare(std::uint32_t row, std::span<const store::Cell> cells) const noexcept;
  /// The values of the order's fields in a row, with `place` from 0.
  [[nodiscard]] store::Cell Read(std::size_t place, std::uint32_t row) { return met_.Read(place, row); }

  void Prepare(std::uint32_t changes) override;
  void Before(const store::RowChange& change) noexcept override;
  void After(const store::RowChange& change) noexcept override;
  void Done() noexcept override { rows_.DropSpares(); }
  void RowsAdded() noexcept override { BecomeStale(); }
  void Renumbered(const store::Plane& /*numbers*/) noexcept override { BecomeStale(); }

 private:
  void BecomeStale() noexcept {
    isStale_ = true;
    ++version_;
  }
  [[nodiscard]] std::uint64_t CurrentLookupVersion() const noexcept;
  [[nodiscard]] bool Concerns(const store::RowChange& change) const noexcept;
  void ReadCells(std::uint32_t row) noexcept;
  [[nodiscard]] PackedKey KeyOf(std::uint32_t row) noexcept {
    PackedKey key;
    keys_.Pack({&row, 1}, sought_, {&key, 1});
    return key;
  }
  /// The bits of the keys of rows, by row.
  [[nodiscard]] std::unique_ptr<std::uint64_t[]> KeysOf(std::span<const std::uint32_t> rows);
  /// How a row stands to the one whose cells were read last.
  [[nodiscard]] int CompareWithSought(std::uint32_t row) const noexcept;
  /// The place of a row with that key or the one that it would have.
  [[nodiscard]] RowList::Place PlaceOf(std::uint32_t row, const PackedKey& key) noexcept;

  std::shared_ptr<store::Followers> followers_;
  const store::Contents& contents_;
  Order order_;
  OrderReader sought_;            // of the row that is looked for
  mutable OrderReader met_;       // of those that it is compared with
  std::vector<FieldType> types_;  // of the fields of the order
  RowKeys keys_;
  RowList rows_;
  std::vector<store::Cell> cells_;  // of the row that is looked for, so that one allocates nothing for them
  std::optional<RowList::Place> leaving_;
  std::optional<Filter> filter_;
  std::uint64_t version_ = 0;
  std::uint64_t lookupVersion_ = 0;
  bool isStale_ = true;
  mutable bool hasFailed_ = false;  // the filter had no value in a row that is in the list nevertheless
};

}  // namespace kiv::query
