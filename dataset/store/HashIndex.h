#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace kiv::store {

/// Finds the numbers that belong to a tag of 32 well-mixed bits: rows by their key, dictionary entries by their text.
/// Open addressing in 64 segments by the tag's top bits, each of which grows on its own when it is three quarters full,
/// so that no growth moves more than a 64th. What tells entries of one tag apart is the caller's.
///
/// Eight entries lie side by side in a line of the processor's memory and are compared at once: nearly every look-up
/// waits for one line and does the same steps whether the entry is there, first or last.
class HashIndex {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  HashIndex() = default;
  HashIndex(HashIndex&& other) noexcept : segments_(std::move(other.segments_)) { other.Clear(); }
  HashIndex& operator=(HashIndex&& other) noexcept {
    segments_ = std::move(other.segments_);
    other.Clear();
    return *this;
  }

  /// The number with that tag for which `matches(number)` holds, kNone if there is none.
  template <class Matches>
  [[nodiscard]] std::uint32_t Find(std::uint32_t tag, Matches&& matches) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    if (segment.lines == nullptr) {
      return kNone;
    }
    for (std::uint32_t at = segment.Home(tag);; at = segment.Next(at)) {
      const std::uint32_t found = segment.lines[at].Find(tag, matches);
      if (found != kNone || !segment.lines[at].IsFull()) {
        return found;
      }
    }
  }
  /// Adds an entry, for which there is room, unless there is one with that tag for which `matches(number)` holds; its
  /// number, or kNone if there was none.
  template <class Matches>
  std::uint32_t InsertUnless(std::uint32_t tag, std::uint32_t number, Matches&& matches) noexcept {
    Segment& segment = segments_[SegmentOf(tag)];
    for (std::uint32_t at = segment.Home(tag);; at = segment.Next(at)) {
      Line& line = segment.lines[at];
      if (const std::uint32_t found = line.Find(tag, matches); found != kNone) {
        return found;
      }
      if (!line.IsFull()) {
        line.Put(tag, number);
        ++segment.count;
        return kNone;
      }
    }
  }
  /// Brings the place of a tag near that is soon asked for.
  void Prefetch(std::uint32_t tag) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    if (segment.lines != nullptr) {
      __builtin_prefetch(&segment.lines[segment.Home(tag)], 1);
    }
  }
  /// Room for one more entry of that tag. Throws std::bad_alloc; nothing has changed then.
  void Reserve(std::uint32_t tag) {
    Segment& segment = segments_[SegmentOf(tag)];
    if (segment.count >= segment.Capacity() / 4 * 3) {
      Grow(segment, segment.lines == nullptr ? 1 : (segment.mask + 1) * 2);
    }
  }
  /// Room for that many entries with that segment's tags; for those who know what is to come.
  void ReserveSegment(std::uint32_t segment, std::uint32_t entries);
  /// Whether an entry of that tag can be added as things are.
  [[nodiscard]] bool HasRoom(std::uint32_t tag) const noexcept {
    const Segment& segment = segments_[SegmentOf(tag)];
    return segment.count < segment.Capacity() / 8 * 7;
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
  static constexpr std::uint32_t kInLine = 8;
  using Eight = std::array<std::uint32_t, kInLine>;
  /// A bit for each place that holds the value.
  static std::uint32_t PlacesOf(const Eight& values, std::uint32_t wanted) noexcept {
#if defined(__SSE2__)
    const __m128i all = _mm_set1_epi32(static_cast<int>(wanted));
    const auto* const at = reinterpret_cast<const __m128i*>(values.data());
    const __m128i low = _mm_cmpeq_epi32(_mm_loadu_si128(at), all);
    const __m128i high = _mm_cmpeq_epi32(_mm_loadu_si128(at + 1), all);
    return static_cast<std::uint32_t>(
        _mm_movemask_epi8(_mm_packs_epi16(_mm_packs_epi32(low, high), _mm_setzero_si128())));
#else
    std::uint32_t places = 0;
    for (std::uint32_t i = 0; i < kInLine; ++i) {
      places |= std::uint32_t{values[i] == wanted} << i;
    }
    return places;
#endif
  }
  /// Entries without a gap, then free places. An entry lies in its home line or, if that and all between are full, in
  /// a later one.
  struct Line {
    Eight tags;
    Eight numbers;

    template <class Matches>
    [[nodiscard]] std::uint32_t Find(std::uint32_t tag, Matches&& matches) const noexcept {
      for (std::uint32_t found = PlacesOf(tags, tag); found != 0; found &= found - 1) {
        const std::uint32_t number = numbers[static_cast<unsigned>(std::countr_zero(found))];
        // Nothing lies behind a free place, whose tag says nothing.
        if (number == kNone || matches(number)) {
          return number;
        }
      }
      return kNone;
    }
    [[nodiscard]] bool IsFull() const noexcept { return numbers[kInLine - 1] != kNone; }
    [[nodiscard]] std::uint32_t Count() const noexcept {
      return static_cast<std::uint32_t>(std::countr_zero(PlacesOf(numbers, kNone) | 1U << kInLine));
    }
    void Put(std::uint32_t tag, std::uint32_t number) noexcept {
      const std::uint32_t place = Count();
      tags[place] = tag;
      numbers[place] = number;
    }
  };
  static_assert(sizeof(Line) == 64);
  struct Segment {
    std::unique_ptr<std::byte[]> memory;
    Line* lines = nullptr;   // in the memory, each in one line of the processor's
    std::uint32_t mask = 0;  // how many there are, a power of two, less 1
    std::uint32_t count = 0;
    [[nodiscard]] std::uint32_t Capacity() const noexcept { return lines == nullptr ? 0 : (mask + 1) * kInLine; }
    [[nodiscard]] std::uint32_t Home(std::uint32_t tag) const noexcept { return tag & mask; }
    [[nodiscard]] std::uint32_t Next(std::uint32_t at) const noexcept { return (at + 1) & mask; }
    void Put(std::uint32_t tag, std::uint32_t number) noexcept {
      std::uint32_t at = Home(tag);
      while (lines[at].IsFull()) {
        at = Next(at);
      }
      lines[at].Put(tag, number);
    }
  };
  static void Grow(Segment& segment, std::uint32_t lines);
  /// Takes an entry out of a line and closes the gap. Returns whether the line was full.
  static bool TakeOut(Line& line, std::uint32_t place) noexcept;

  std::array<Segment, kSegments> segments_;
};

}  // namespace kiv::store
