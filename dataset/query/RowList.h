#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "dataset/query/Order.h"

namespace kiv::query {

/// Row numbers in an order that its owner keeps, in leaves of at most 1,024, with running counts: the row at a position
/// and the position of a place are found without a walk, and an insertion moves 12 KiB at most. Beside each row is the
/// beginning of what it is ordered by, so that a search reads numbers that lie side by side and asks for rows only
/// where those are equal. An order of rows by their numbers needs none of that.
class RowList {
 public:
  static constexpr std::uint32_t kLeafRows = 1024;

  /// What rows are ordered by beside their numbers.
  enum class By : bool { Numbers, Keys };

  explicit RowList(By by = By::Keys) noexcept : by_(by) {}

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
  [[nodiscard]] std::uint32_t At(Place place) const noexcept { return leaves_[place.leaf].page.rows[place.offset]; }
  /// Whether there is that row at the place.
  [[nodiscard]] bool Has(Place place, std::uint32_t row) const noexcept {
    return place.leaf < leaves_.size() && place.offset < leaves_[place.leaf].count && At(place) == row;
  }
  [[nodiscard]] std::uint32_t PositionOf(Place place) const noexcept {
    return place.leaf == leaves_.size() ? count_ : starts_[place.leaf] + place.offset;
  }
  /// The first place whose row is not before something: `before(row)` says of a row whether it is, and is true for the
  /// first rows only; `key` is packed from what the rows are compared with. It is called where keys are equal.
  template <class Before>
  [[nodiscard]] Place FirstNot(const PackedKey& key, Before&& before) const noexcept;

  /// Holds these rows and no others; `keyOf(row)` gives the bits of a row's key. Throws std::bad_alloc, and has not
  /// changed then.
  template <class KeyOf>
  void Assign(std::span<const std::uint32_t> rows, KeyOf&& keyOf);
  /// Makes room for that many insertions. Throws std::bad_alloc.
  void Reserve(std::uint32_t insertions);
  /// Gives back room that was made for more than the next insertion.
  void DropSpares() noexcept;
  /// Inserts a row with the bits of its key, for which there is room.
  void Insert(Place place, std::uint32_t row, std::uint64_t key) noexcept;
  void Erase(Place place) noexcept;

 private:
  /// The memory of a leaf; keys only where they are kept.
  struct Page {
    std::unique_ptr<std::uint32_t[]> rows;
    std::unique_ptr<std::uint64_t[]> keys;
  };
  struct Leaf {
    Page page;
    std::uint32_t count = 0;
  };

  [[nodiscard]] Page MakePage() const;
  Leaf& AddLeaf(std::size_t at) noexcept;
  void Split(Place& place) noexcept;
  bool JoinWithNext(std::size_t at) noexcept;
  /// Copies rows with their keys to a place with room for them; they may lie there.
  void Move(const Page& from, std::uint32_t first, std::uint32_t count, Page& to, std::uint32_t at) const noexcept;
  /// Notes the key of a leaf's first row.
  void SetFence(std::size_t leaf) noexcept;
  void CountAnew() noexcept;

  By by_;
  std::vector<Leaf> leaves_;           // none is empty
  std::vector<std::uint32_t> starts_;  // by leaf: the position of its first row
  std::vector<std::uint64_t> fences_;  // by leaf: the key of its first row
  std::vector<Page> spares_;
  std::uint32_t count_ = 0;
};

template <class Before>
RowList::Place RowList::FirstNot(const PackedKey& key, Before&& before) const noexcept {
  // Bisects what is left of `count` rows behind `first`.
  const auto find = [&](std::uint32_t first, std::uint32_t count, const std::uint64_t* keys, auto&& rowAt) {
    while (count > 0) {
      const std::uint32_t half = count / 2;
      const std::uint32_t middle = first + half;
      const int order = by_ == By::Keys ? key.CompareWith(keys[middle]) : 0;
      const bool isBefore = order > 0 || (order == 0 && before(rowAt(middle)));
      first = isBefore ? middle + 1 : first;
      count = isBefore ? count - half - 1 : half;
    }
    return first;
  };
  const auto leaves = static_cast<std::uint32_t>(leaves_.size());
  const std::uint32_t behind =
      find(0, leaves, fences_.data(), [this](std::uint32_t leaf) { return leaves_[leaf].page.rows[0]; });
  if (behind == 0) {
    return {};
  }
  const Leaf& leaf = leaves_[behind - 1];
  const std::uint32_t offset =
      find(1, leaf.count - 1, leaf.page.keys.get(), [&leaf](std::uint32_t place) { return leaf.page.rows[place]; });
  if (offset == leaf.count && behind < leaves) {
    return {behind, 0};
  }
  return {behind - 1, offset};
}

template <class KeyOf>
void RowList::Assign(std::span<const std::uint32_t> rows, KeyOf&& keyOf) {
  // Not quite full, so that the first insertions need not split.
  constexpr std::size_t kFilled = std::size_t{kLeafRows} / 16 * 15;
  RowList made(by_);
  const std::size_t count = (rows.size() + kFilled - 1) / kFilled;
  made.leaves_.resize(count);
  made.starts_.resize(count);
  made.fences_.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    Leaf& leaf = made.leaves_[i];
    leaf.page = MakePage();
    leaf.count = static_cast<std::uint32_t>(std::min(kFilled, rows.size()));
    std::copy_n(rows.begin(), leaf.count, leaf.page.rows.get());
    if (by_ == By::Keys) {
      std::transform(rows.begin(), rows.begin() + leaf.count, leaf.page.keys.get(), keyOf);
    }
    made.SetFence(i);
    rows = rows.subspan(leaf.count);
  }
  made.CountAnew();
  *this = std::move(made);
}

}  // namespace kiv::query
