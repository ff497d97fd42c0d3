#include "dataset/store/HashIndex.h"

#include <algorithm>

namespace kiv::store {

void HashIndex::Grow(Segment& segment, std::uint32_t lines) {
  Segment grown;
  std::size_t space = (std::size_t{lines} + 1) * sizeof(Line);
  grown.memory = std::make_unique_for_overwrite<std::byte[]>(space);
  void* aligned = grown.memory.get();
  aligned = std::align(sizeof(Line), lines * sizeof(Line), aligned, space);
  grown.lines = static_cast<Line*>(aligned);
  grown.mask = lines - 1;
  grown.count = segment.count;
  for (std::uint32_t at = 0; at < lines; ++at) {
    Line* const line = new (&grown.lines[at]) Line;
    line->tags.fill(0);
    line->numbers.fill(kNone);
  }
  // Counted beside the lines: to look into a line that has just been written to would be to wait for it.
  const auto counts = std::make_unique<std::uint8_t[]>(lines);
  for (std::uint32_t at = 0; at < segment.Capacity() / kInLine; ++at) {
    const Line& line = segment.lines[at];
    for (std::uint32_t place = 0; place < kInLine && line.numbers[place] != kNone; ++place) {
      std::uint32_t to = grown.Home(line.tags[place]);
      while (counts[to] == kInLine) {
        to = grown.Next(to);
      }
      grown.lines[to].tags[counts[to]] = line.tags[place];
      grown.lines[to].numbers[counts[to]++] = line.numbers[place];
    }
  }
  segment = std::move(grown);
}

void HashIndex::ReserveSegment(std::uint32_t segment, std::uint32_t entries) {
  const std::uint32_t wanted = std::bit_ceil((entries + entries / 3) / kInLine + 1);
  if (entries > 0 && wanted * kInLine > segments_[segment].Capacity()) {
    Grow(segments_[segment], wanted);
  }
}

bool HashIndex::TakeOut(Line& line, std::uint32_t place) noexcept {
  const bool wasFull = line.IsFull();
  const std::uint32_t last = line.Count() - 1;
  line.tags[place] = line.tags[last];
  line.numbers[place] = line.numbers[last];
  line.tags[last] = 0;
  line.numbers[last] = kNone;
  return wasFull;
}

void HashIndex::Erase(std::uint32_t tag, std::uint32_t number) noexcept {
  Segment& segment = segments_[SegmentOf(tag)];
  std::uint32_t hole = segment.Home(tag);
  std::uint32_t place = 0;
  while ((place = static_cast<std::uint32_t>(std::ranges::find(segment.lines[hole].numbers, number) -
                                             segment.lines[hole].numbers.begin())) == kInLine) {
    hole = segment.Next(hole);
  }
  bool mayBeCutOff = TakeOut(segment.lines[hole], place);
  --segment.count;
  // What had gone past the line because it was full would not be found any more: one such entry fills it again, as long
  // as lines follow that are full.
  for (std::uint32_t at = segment.Next(hole); mayBeCutOff; at = segment.Next(at)) {
    Line& line = segment.lines[at];
    mayBeCutOff = line.IsFull();
    for (place = 0; place < kInLine && line.numbers[place] != kNone; ++place) {
      const std::uint32_t fromHome = (at - segment.Home(line.tags[place])) & segment.mask;
      if (fromHome >= ((at - hole) & segment.mask)) {
        segment.lines[hole].Put(line.tags[place], line.numbers[place]);
        TakeOut(line, place);
        hole = at;
        break;
      }
    }
  }
}

}  // namespace kiv::store
