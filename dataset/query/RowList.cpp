#include "dataset/query/RowList.h"

namespace kiv::query {
namespace {

constexpr std::uint32_t kHalf = RowList::kLeafRows / 2;

}  // namespace

RowList::Place RowList::PlaceAt(std::uint32_t position) const noexcept {
  const auto behind = static_cast<std::uint32_t>(std::ranges::upper_bound(starts_, position) - starts_.begin());
  return behind == 0 ? Place{} : Place{behind - 1, position - starts_[behind - 1]};
}

void RowList::Reserve(std::uint32_t insertions) {
  // Every leaf may be full and split once; from then on a leaf takes half of its rows before it splits again.
  // What leaves give up meanwhile is used again.
  const std::size_t most = std::min<std::size_t>(insertions, leaves_.size() + insertions / kHalf + 2);
  const std::size_t leaves = leaves_.size() + most;
  if (leaves > leaves_.capacity() || leaves > starts_.capacity()) {
    leaves_.reserve(leaves + leaves / 2);
    starts_.reserve(leaves + leaves / 2);
  }
  spares_.reserve(most);
  while (spares_.size() < most) {
    spares_.push_back(std::make_unique_for_overwrite<std::uint32_t[]>(kLeafRows));
  }
}

void RowList::DropSpares() noexcept {
  if (spares_.size() > 1) {
    spares_.resize(1);
  }
}

RowList::Leaf& RowList::AddLeaf(std::size_t at) noexcept {
  Leaf& leaf = *leaves_.emplace(leaves_.begin() + static_cast<std::ptrdiff_t>(at));
  leaf.rows = std::move(spares_.back());
  spares_.pop_back();
  starts_.push_back(0);
  return leaf;
}

void RowList::Split(Place& place) noexcept {
  Leaf& added = AddLeaf(place.leaf + 1);
  Leaf& full = leaves_[place.leaf];
  if (place.offset == kLeafRows) {
    // What comes in order fills its leaves.
    place = {place.leaf + 1, 0};
    return;
  }
  std::copy_n(full.rows.get() + kHalf, kHalf, added.rows.get());
  full.count = kHalf;
  added.count = kHalf;
  if (place.offset > kHalf) {
    place = {place.leaf + 1, place.offset - kHalf};
  }
}

bool RowList::JoinWithNext(std::size_t at) noexcept {
  Leaf& leaf = leaves_[at];
  const bool isLast = at + 1 == leaves_.size();
  if (leaf.count > 0 && (isLast || leaf.count + leaves_[at + 1].count > kHalf)) {
    return false;
  }
  if (!isLast) {
    Leaf& next = leaves_[at + 1];
    std::copy_n(next.rows.get(), next.count, leaf.rows.get() + leaf.count);
    leaf.key = leaf.count == 0 ? next.key : leaf.key;
    leaf.count += next.count;
  }
  const auto given = leaves_.begin() + static_cast<std::ptrdiff_t>(isLast ? at : at + 1);
  if (spares_.size() < spares_.capacity()) {
    spares_.push_back(std::move(given->rows));
  }
  leaves_.erase(given);
  starts_.pop_back();
  return true;
}

void RowList::CountAnew() noexcept {
  count_ = 0;
  for (std::size_t i = 0; i < leaves_.size(); ++i) {
    starts_[i] = count_;
    count_ += leaves_[i].count;
  }
}

}  // namespace kiv::query
