#include "dataset/store/HashIndex.h"

#include <bit>

namespace kiv::store {

void HashIndex::Grow(Segment& segment, std::uint32_t capacity) {
  Segment grown;
  grown.slots = std::make_unique_for_overwrite<Slot[]>(capacity);
  grown.capacity = capacity;
  grown.count = segment.count;
  for (std::uint32_t i = 0; i < capacity; ++i) {
    grown.slots[i] = {0, kNone};
  }
  for (std::uint32_t i = 0; i < segment.capacity; ++i) {
    if (segment.slots[i].number != kNone) {
      grown.Put(segment.slots[i].tag, segment.slots[i].number);
    }
  }
  segment = std::move(grown);
}

void HashIndex::ReserveSegment(std::uint32_t segment, std::uint32_t entries) {
  const std::uint32_t wanted = std::bit_ceil(entries + entries / 3 + 1);
  if (entries > 0 && wanted > segments_[segment].capacity) {
    Grow(segments_[segment], wanted < 8 ? 8 : wanted);
  }
}

void HashIndex::Erase(std::uint32_t tag, std::uint32_t number) noexcept {
  Segment& segment = segments_[SegmentOf(tag)];
  std::uint32_t hole = segment.Home(tag);
  while (segment.slots[hole].number != number) {
    hole = segment.Next(hole);
  }
  // What follows moves up where it would otherwise be cut off from its home by the hole.
  for (std::uint32_t at = segment.Next(hole); segment.slots[at].number != kNone; at = segment.Next(at)) {
    const std::uint32_t home = segment.Home(segment.slots[at].tag);
    const std::uint32_t fromHome = (at - home) & (segment.capacity - 1);
    const std::uint32_t fromHole = (at - hole) & (segment.capacity - 1);
    if (fromHome >= fromHole) {
      segment.slots[hole] = segment.slots[at];
      hole = at;
    }
  }
  segment.slots[hole] = {0, kNone};
  --segment.count;
}

}  // namespace kiv::store
