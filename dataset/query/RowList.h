#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "dataset/query/Order.h"

namespace kiv::query {

/// Row numbers in an order that its owner keeps, in leaves of at most 1,024, with running counts: the row at a position
/// and the position of a place are found without a walk, and an insertion moves 4 KiB at most.
class RowList {
 public:
  static constexpr std::uint32_t kLeafRows = 1024;

  /// Where a row is, or would be: before the row there.
  struct Place {
    std::uint32_t leaf = 0;
    std::uint32_t offset = 0;
  };

  [[nodiscard]] std::uint32_t Count() const noexcept { return count_; }
  /// The row at a position below Count().
  [[nodiscard]] std::uint32_t At(std::uint32_t position) const noexcept { return At(PlaceAt(position)); }
  /// The place of a position up to Count().
  [[nodiscard]] Place PlaceAt(std::uint32_t position) const noexcept;
  [[nodiscard]] std::uint32_t At(Place place) const noexcept { return leaves_[place.leaf].rows[place.offset]; }
  /// Whether there is that row at the place.
  [[nodiscard]] bool Has(Place place, std::uint32_t row) const noexcept {
    return place.leaf < leaves_.size() && place.offset < leaves_[place.leaf].count && At(place) == row;
  }
  [[nodiscard]] std::uint32_t PositionOf(Place place) const noexcept {
    return place.leaf == leaves_.size() ? count_ : starts_[place.leaf] + place.offset;
  }
  /// The first place whose row is not before something: `before(row)` says of a row whether it is, and is true for the
  /// first rows only; `key` is packed from what the rows are compared with and spares most of the calls.
  template <class Before>
  [[nodiscard]] Place FirstNot(const PackedKey& key, Before&& before) const noexcept;

  /// Holds these rows and no others; `keyOf(row)` packs what a row is ordered by. Throws std::bad_alloc, and has not
  /// changed then.
  template <class KeyOf>
  void Assign(std::span<const std::uint32_t> rows, KeyOf&& keyOf);
  /// Makes room for that many insertions. Throws std::bad_alloc.
  void Reserve(std::uint32_t insertions);
  /// Gives back room that was made for more than the next insertion.
  void DropSpares() noexcept;
  /// Inserts a row, for which there is room.
  template <class KeyOf>
  void Insert(Place place, std::uint32_t row, KeyOf&& keyOf) noexcept;
  template <class KeyOf>
  void Erase(Place place, KeyOf&& keyOf) noexcept;

 private:
  using Rows = std::unique_ptr<std::uint32_t[]>;
  struct Leaf {
    Rows rows;
    std::uint32_t count = 0;
    PackedKey key;  // of the first row
  };

  Leaf& AddLeaf(std::size_t at) noexcept;
  void Split(Place& place) noexcept;
  bool JoinWithNext(std::size_t at) noexcept;
  void CountAnew() noexcept;

  std::vector<Leaf> leaves_;           // none is empty
  std::vector<std::uint32_t> starts_;  // by leaf: the position of its first row
  std::vector<Rows> spares_;
  std::uint32_t count_ = 0;
};

template <class Before>
RowList::Place RowList::FirstNot(const PackedKey& key, Before&& before) const noexcept {
  std::size_t low = 0;
  for (std::size_t high = leaves_.size(); low < high;) {
    const std::size_t middle = (low + high) / 2;
    const Leaf& leaf = leaves_[middle];
    const int order = leaf.key.Compare(key);
    if (order < 0 || (order == 0 && before(leaf.rows[0]))) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == 0) {
    return {};
  }
  const Leaf& leaf = leaves_[low - 1];
  std::uint32_t first = 1;
  for (std::uint32_t end = leaf.count; first < end;) {
    const std::uint32_t middle = (first + end) / 2;
    if (before(leaf.rows[middle])) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  if (first == leaf.count && low < leaves_.size()) {
    return {static_cast<std::uint32_t>(low), 0};
  }
  return {static_cast<std::uint32_t>(low - 1), first};
}

template <class KeyOf>
void RowList::Assign(std::span<const std::uint32_t> rows, KeyOf&& keyOf) {
  // Not quite full, so that the first insertions need not split.
  constexpr std::size_t kFilled = std::size_t{kLeafRows} / 16 * 15;
  RowList made;
  const std::size_t count = (rows.size() + kFilled - 1) / kFilled;
  made.leaves_.resize(count);
  made.starts_.resize(count);
  for (Leaf& leaf : made.leaves_) {
    leaf.rows = std::make_unique_for_overwrite<std::uint32_t[]>(kLeafRows);
    leaf.count = static_cast<std::uint32_t>(std::min(kFilled, rows.size()));
    std::copy_n(rows.begin(), leaf.count, leaf.rows.get());
    leaf.key = keyOf(rows[0]);
    rows = rows.subspan(leaf.count);
  }
  made.CountAnew();
  *this = std::move(made);
}

template <class KeyOf>
void RowList::Insert(Place place, std::uint32_t row, KeyOf&& keyOf) noexcept {
  const std::size_t leaves = leaves_.size();
  if (leaves == 0) {
    AddLeaf(0);
  } else if (leaves_[place.leaf].count == kLeafRows) {
    const std::uint32_t split = place.leaf;
    Split(place);
    if (leaves_[split + 1].count > 0) {
      leaves_[split + 1].key = keyOf(leaves_[split + 1].rows[0]);
    }
  }
  Leaf& leaf = leaves_[place.leaf];
  std::uint32_t* const rows = leaf.rows.get();
  std::copy_backward(rows + place.offset, rows + leaf.count, rows + leaf.count + 1);
  rows[place.offset] = row;
  ++leaf.count;
  if (place.offset == 0) {
    leaf.key = keyOf(row);
  }
  if (leaves_.size() != leaves) {
    CountAnew();
    return;
  }
  ++count_;
  for (std::size_t i = place.leaf + 1; i < leaves; ++i) {
    ++starts_[i];
  }
}

template <class KeyOf>
void RowList::Erase(Place place, KeyOf&& keyOf) noexcept {
  Leaf& leaf = leaves_[place.leaf];
  std::uint32_t* const rows = leaf.rows.get();
  std::copy(rows + place.offset + 1, rows + leaf.count, rows + place.offset);
  --leaf.count;
  if (place.offset == 0 && leaf.count > 0) {
    leaf.key = keyOf(rows[0]);
  }
  if (JoinWithNext(place.leaf) || (place.leaf > 0 && JoinWithNext(place.leaf - 1))) {
    CountAnew();
    return;
  }
  --count_;
  for (std::size_t i = place.leaf + 1; i < starts_.size(); ++i) {
    --starts_[i];
  }
}

}  // namespace kiv::query
