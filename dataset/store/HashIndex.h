#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace kiv::store {

/// Finds the numbers that belong to a tag of 32 well-mixed bits: rows by their key, dictionary entries by their text.
/// Open addressing in 64 segments by the tag's top bits, each of which grows on its own when it is three quarters full,
/// so that no growth moves more than a 64th. What tells entries of one tag apart is the caller's.
class HashIndex {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  /// The number with that tag for which `matches(number)` holds, kNone if there is none.
  template <class Matches>
  [[nodiscard]] std::uint32_t Find(std::uint32_t tag, Matches&& matches) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    if (segment.capacity == 0) {
      return kNone;
    }
    for (std::uint32_t at = segment.Home(tag);; at = segment.Next(at)) {
      const Slot& slot = segment.slots[at];
      if (slot.number == kNone || (slot.tag == tag && matches(slot.number))) {
        return slot.number;
      }
    }
  }
  /// Brings the place of a tag near that is soon asked for.
  void Prefetch(std::uint32_t tag) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    if (segment.capacity > 0) {
      __builtin_prefetch(&segment.slots[segment.Home(tag)], 1);
    }
  }
  /// Room for one more entry of that tag. Throws std::bad_alloc; nothing has changed then.
  void Reserve(std::uint32_t tag) {
    Segment& segment = segments_[SegmentOf(tag)];
    if (segment.count >= segment.capacity / 4 * 3) {
      Grow(segment, segment.capacity == 0 ? 8 : segment.capacity * 2);
    }
  }
  /// Room for that many entries with that segment's tags; for those who know what is to come.
  void ReserveSegment(std::uint32_t segment, std::uint32_t entries);
  /// Whether an entry of that tag can be added as things are.
  [[nodiscard]] bool HasRoom(std::uint32_t tag) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    return segment.count < segment.capacity / 8 * 7;
  }
  /// Adds an entry for which there is room.
  void Insert(std::uint32_t tag, std::uint32_t number) noexcept {
    Segment& segment = segments_[SegmentOf(tag)];
    segment.Put(tag, number);
    ++segment.count;
  }
  /// Takes out an entry that is there.
  void Erase(std::uint32_t tag, std::uint32_t number) noexcept;
  /// Forgets everything.
  void Clear() noexcept { segments_ = {}; }

  static constexpr std::uint32_t kSegments = 64;
  /// The segment of a tag, by its top bits.
  static constexpr std::uint32_t SegmentOf(std::uint32_t tag) noexcept { return tag >> 26U; }

 private:
  struct Slot {
    std::uint32_t tag;
    std::uint32_t number;
  };
  struct Segment {
    std::unique_ptr<Slot[]> slots;
    std::uint32_t capacity = 0;  // a power of two, or 0
    std::uint32_t count = 0;
    [[nodiscard]] std::uint32_t Home(std::uint32_t tag) const noexcept { return tag & (capacity - 1); }
    [[nodiscard]] std::uint32_t Next(std::uint32_t at) const noexcept { return (at + 1) & (capacity - 1); }
    void Put(std::uint32_t tag, std::uint32_t number) noexcept {
      std::uint32_t at = Home(tag);
      while (slots[at].number != kNone) {
        at = Next(at);
      }
      slots[at] = {tag, number};
    }
  };
  static void Grow(Segment& segment, std::uint32_t capacity);

  std::array<Segment, kSegments> segments_;
};

}  // namespace kiv::store
