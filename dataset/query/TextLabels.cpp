#include "dataset/query/TextLabels.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kiv::query {

using store::Cell;

namespace {

/// Behind the greatest number.
constexpr std::uint64_t kEnd = std::uint64_t{1} << 32U;
/// Texts that come in order, as numbered ones do, are this far from each other.
constexpr std::uint64_t kStep = 1024;

}  // namespace

Cell TextLabels::TextOf(std::uint32_t code) const noexcept {
  return contents_.Resolve(by_.field, {.bits = code, .isNull = false});
}

PackedKey TextLabels::PrefixOf(const Cell& text) const noexcept {
  const OrderedBits prefix = OrderedBitsOf(GetType(), by_.collation, text);
  return {prefix.bits, prefix.width, prefix.isExact};
}

RowList::Place TextLabels::PlaceOf(const Cell& text) const noexcept {
  return codes_.FirstNot(PrefixOf(text),
                         [&](std::uint32_t code) { return CompareCells(by_, GetType(), TextOf(code), text) < 0; });
}

void TextLabels::Extend() {
  const std::uint32_t count = GetTexts().EntryCount();
  if (codes_.Count() == 0) {
    LabelAll(count);
  }
  for (std::uint32_t code = codes_.Count(); code < count; ++code) {
    const Cell text = TextOf(code);
    labels_.MakeWritable(code);
    codes_.Reserve(1);
    const RowList::Place place = PlaceOf(text);
    labels_.Put(code, LabelFor(text, codes_.PositionOf(place)));
    codes_.Insert(place, code, PrefixOf(text).bits);
  }
}

void TextLabels::LabelAll(std::uint32_t count) {
  std::vector<std::pair<std::uint64_t, std::uint32_t>> entries(count);
  for (std::uint32_t code = 0; code < count; ++code) {
    entries[code] = {PrefixOf(TextOf(code)).bits, code};
    labels_.MakeWritable(code);
  }
  const auto compare = [this](const auto& left, const auto& right) {
    return left.first != right.first ? (left.first < right.first ? -1 : 1)
                                     : CompareCells(by_, GetType(), TextOf(left.second), TextOf(right.second));
  };
  std::ranges::sort(entries, [&](const auto& left, const auto& right) { return compare(left, right) < 0; });
  std::vector<std::uint32_t> sorted;
  sorted.reserve(count);
  // Half of the numbers are kept for texts before the first and behind the last.
  std::uint64_t label = kEnd / 4;
  const std::uint64_t gap = kEnd / 2 / (std::uint64_t{count} + 1);
  for (std::uint32_t i = 0; i < count; ++i) {
    label += i == 0 || compare(entries[i - 1], entries[i]) != 0 ? gap : 0;
    labels_.Put(entries[i].second, static_cast<Label>(label & ~std::uint64_t{1}));
    sorted.push_back(entries[i].second);
  }
  codes_.Assign(sorted, [this](std::uint32_t code) { return PrefixOf(TextOf(code)).bits; });
}

TextLabels::Label TextLabels::LabelFor(const Cell& text, std::uint32_t position) const noexcept {
  const bool isFirst = position == 0;
  const bool isLast = position == codes_.Count();
  if (!isLast && CompareCells(by_, GetType(), TextOf(codes_.At(position)), text) == 0) {
    return LabelAt(codes_.At(position));
  }
  const std::uint64_t low = isFirst ? 0 : LabelAt(codes_.At(position - 1));
  const std::uint64_t high = isLast ? kEnd : LabelAt(codes_.At(position));
  std::uint64_t middle = (low + high) / 2;
  if (isLast && !isFirst) {
    middle = std::min(middle, low + kStep);
  } else if (isFirst && !isLast && high > kStep) {
    middle = std::max(middle, high - kStep);
  }
  middle &= ~std::uint64_t{1};
  return static_cast<Label>(low < middle && middle < high ? middle : low | 1U);
}

OrderedBits TextLabels::OfText(std::string_view bytes) const noexcept {
  const Cell text{.bytes = bytes, .isNull = false};
  const std::uint32_t position = codes_.PositionOf(PlaceOf(text));
  if (position < codes_.Count() && CompareCells(by_, GetType(), TextOf(codes_.At(position)), text) == 0) {
    return Of(codes_.At(position));
  }
  return BitsOf(position == 0 ? 1 : LabelAt(codes_.At(position - 1)) | 1U);
}

}  // namespace kiv::query
