#include "dataset/query/RowList.h"

#include <cstring>

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
  if (leaves > leaves_.capacity() || leaves > starts_.capacity() || leaves > fences_.capacity()) {
    leaves_.reserve(leaves + leaves / 2);
    starts_.reserve(leaves + leaves / 2);
    fences_.reserve(leaves + leaves / 2);
  }
  spares_.reserve(most);
  while (spares_.size() < most) {
    spares_.push_back(MakePage());
  }
}

void RowList::DropSpares() noexcept {
  if (spares_.size() > 1) {
    spares_.resize(1);
  }
}

RowList::Page RowList::MakePage() const {
  return {std::make_unique_for_overwrite<std::uint32_t[]>(kLeafRows),
          by_ == By::Keys ? std::make_unique_for_overwrite<std::uint64_t[]>(kLeafRows) : nullptr};
}

RowList::Leaf& RowList::AddLeaf(std::size_t at) noexcept {
  Leaf& leaf = *leaves_.emplace(leaves_.begin() + static_cast<std::ptrdiff_t>(at));
  leaf.page = std::move(spares_.back());
  spares_.pop_back();
  starts_.push_back(0);
  fences_.insert(fences_.begin() + static_cast<std::ptrdiff_t>(at), 0);
  return leaf;
}

void RowList::Move(const Page& from, std::uint32_t first, std::uint32_t count, Page& to,
                   std::uint32_t at) const noexcept {
  std::memmove(to.rows.get() + at, from.rows.get() + first, count * sizeof(std::uint32_t));
  if (by_ == By::Keys) {
    std::memmove(to.keys.get() + at, from.keys.get() + first, count * sizeof(std::uint64_t));
  }
}

void RowList::SetFence(std::size_t leaf) noexcept {
  fences_[leaf] = by_ == By::Keys ? leaves_[leaf].page.keys[0] : 0;
}

void RowList::Split(Place& place) noexcept {
  Leaf& added = AddLeaf(place.leaf + 1);
  Leaf& full = leaves_[place.leaf];
  if (place.offset == kLeafRows) {
    // What comes in order fills its leaves.
    place = {place.leaf + 1, 0};
    return;
  }
  Move(full.page, kHalf, kHalf, added.page, 0);
  full.count = kHalf;
  added.count = kHalf;
  SetFence(place.leaf + 1);
  if (place.offset > kHalf) {
    place = {place.leaf + 1, place.offset - kHalf};
  }
}

void RowList::Insert(Place place, std::uint32_t row, std::uint64_t key) noexcept {
  const std::size_t leaves = leaves_.size();
  if (leaves == 0) {
    AddLeaf(0);
  } else if (leaves_[place.leaf].count == kLeafRows) {
    Split(place);
  }
  Leaf& leaf = leaves_[place.leaf];
  Move(leaf.page, place.offset, leaf.count - place.offset, leaf.page, place.offset + 1);
  leaf.page.rows[place.offset] = row;
  if (by_ == By::Keys) {
    leaf.page.keys[place.offset] = key;
  }
  ++leaf.count;
  SetFence(place.leaf);
  if (leaves_.size() != leaves) {
    CountAnew();
    return;
  }
  ++count_;
  for (std::size_t i = place.leaf + 1; i < leaves; ++i) {
    ++starts_[i];
  }
}

void RowList::Erase(Place place) noexcept {
  Leaf& leaf = leaves_[place.leaf];
  Move(leaf.page, place.offset + 1, leaf.count - place.offset - 1, leaf.page, place.offset);
  --leaf.count;
  SetFence(place.leaf);
  if (JoinWithNext(place.leaf) || (place.leaf > 0 && JoinWithNext(place.leaf - 1))) {
    CountAnew();
    return;
  }
  --count_;
  for (std::size_t i = place.leaf + 1; i < starts_.size(); ++i) {
    --starts_[i];
  }
}

bool RowList::JoinWithNext(std::size_t at) noexcept {
  Leaf& leaf = leaves_[at];
  const bool isLast = at + 1 == leaves_.size();
  if (leaf.count > 0 && (isLast || leaf.count + leaves_[at + 1].count > kHalf)) {
    return false;
  }
  if (!isLast) {
    const Leaf& next = leaves_[at + 1];
    Move(next.page, 0, next.count, leaf.page, leaf.count);
    leaf.count += next.count;
    SetFence(at);
  }
  const auto given = static_cast<std::ptrdiff_t>(isLast ? at : at + 1);
  if (spares_.size() < spares_.capacity()) {
    spares_.push_back(std::move(leaves_[static_cast<std::size_t>(given)].page));
  }
  leaves_.erase(leaves_.begin() + given);
  fences_.erase(fences_.begin() + given);
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
