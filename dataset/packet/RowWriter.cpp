#include "dataset/packet/RowWriter.h"

#include <algorithm>
#include <limits>

#include "dataset/packet/DatasetWriter.h"

namespace kiv::packet {

using store::Column;
using store::kBlockRows;
using store::Plane;
using store::Storage;
using store::StoredState;
using store::Texts;
using store::TraitsOf;

namespace {

/// Whether all elements are the same bytes.
bool AreEqual(std::span<const std::byte> elements, std::size_t width) noexcept {
  return std::memcmp(elements.data(), elements.data() + width, elements.size() - width) == 0;
}

template <class Element>
Element ElementAt(std::span<const std::byte> elements, std::size_t place) noexcept {
  Element element;
  std::memcpy(&element, elements.data() + place * sizeof element, sizeof element);
  return element;
}

template <class Narrow, class Element>
void PutNarrow(ChunkWriter& out, std::span<const std::byte> elements, Element least) {
  const std::size_t count = elements.size() / sizeof(Element);
  std::byte* at = out.Room(count * sizeof(Narrow)).data();
  for (std::size_t i = 0; i < count; ++i, at += sizeof(Narrow)) {
    const auto above = static_cast<Narrow>(static_cast<std::uint64_t>(ElementAt<Element>(elements, i)) -
                                           static_cast<std::uint64_t>(least));
    std::memcpy(at, &above, sizeof above);
  }
}

}  // namespace

RowWriter::RowWriter(const CellSource& cells, const std::vector<std::uint32_t>& largeNumbers, ChunkWriter& out)
    : cells_(cells), contents_(cells.GetContents()), largeNumbers_(largeNumbers), out_(out) {
  rows_.reserve(std::min(contents_.rowCount, kBlockRows));
}

void RowWriter::Add(std::uint32_t row) {
  rows_.push_back(row);
  if (rows_.size() == kBlockRows) {
    WriteBlock();
  }
}

void RowWriter::Finish() {
  if (!rows_.empty()) {
    WriteBlock();
  }
}

void RowWriter::WriteBlock() {
  WriteStates();
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    WriteColumn(static_cast<std::uint16_t>(i));
  }
  if (out_.IsOpen()) {
    out_.End();
  }
  firstRow_ += Count();
  rows_.clear();
}

void RowWriter::BeginChunk() {
  if (out_.IsOpen() && out_.IsFull()) {
    out_.End();
  }
  if (!out_.IsOpen()) {
    out_.Begin(kRows);
    out_.Put(firstRow_);
    out_.Put(static_cast<std::uint16_t>(rows_.size()));
  }
}

void RowWriter::PutSection(std::uint16_t field, Encoding encoding, NullBits nullBits) {
  BeginChunk();
  out_.Put(field);
  out_.Put(encoding);
  out_.Put(nullBits);
  if (nullBits == NullBits::Bitmap) {
    out_.PutBytes(nulls_.data(), nulls_.size());
  }
}

void RowWriter::Gather(const Plane& plane) {
  const std::size_t size = Plane::BytesOf(plane.ElementWidth(), rows_.size());
  const bool liesTogether = rows_.front() % kBlockRows == 0 && rows_.back() - rows_.front() + 1 == rows_.size();
  const auto block = plane.BlockBytes(store::BlockOf(rows_.front()));
  const bool isBits = plane.ElementWidth() == Plane::Width::Bit;
  if (liesTogether && !isBits && block.size() >= size) {
    elements_ = block.first(size);
    return;
  }
  copied_.assign(size, std::byte{0});
  elements_ = copied_;
  if (liesTogether) {
    std::copy_n(block.begin(), std::min(size, block.size()), copied_.begin());
    if (isBits && rows_.size() % 8 != 0) {
      copied_.back() &= static_cast<std::byte>((1U << (rows_.size() % 8)) - 1);
    }
    return;
  }
  const auto copy = [&]<class Element>(Element) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const auto element = plane.AtOrZero<Element>(rows_[i]);
      std::memcpy(copied_.data() + i * sizeof element, &element, sizeof element);
    }
  };
  switch (plane.ElementWidth()) {
    case Plane::Width::Bit:
      for (std::size_t i = 0; i < rows_.size(); ++i) {
        copied_[i / 8] |= static_cast<std::byte>(unsigned{plane.BitAt(rows_[i])} << (i % 8));
      }
      break;
    case Plane::Width::One:
      return copy(std::uint8_t{});
    case Plane::Width::Two:
      return copy(std::uint16_t{});
    case Plane::Width::Four:
      return copy(std::uint32_t{});
    case Plane::Width::Eight:
      return copy(std::uint64_t{});
  }
}

void RowWriter::GatherNumbers(std::uint16_t field) {
  copied_.assign(rows_.size() * 4, std::byte{0});
  elements_ = copied_;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (!IsNull(static_cast<std::uint32_t>(i))) {
      const std::uint32_t number = largeNumbers_[static_cast<std::size_t>(cells_.LoadAt(rows_[i], field).bits)];
      std::memcpy(copied_.data() + i * 4, &number, sizeof number);
    }
  }
}

void RowWriter::GatherCells(std::uint16_t field, bool secondHalves) {
  const Plane::Width width = contents_.columns[field].values.ElementWidth();
  const std::size_t size = Plane::BytesOf(width, 1);
  copied_.assign(Plane::BytesOf(width, rows_.size()), std::byte{0});
  elements_ = copied_;
  nulls_.assign(Plane::BytesOf(Plane::Width::Bit, rows_.size()), std::byte{0});
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const store::Cell cell = cells_.At(rows_[i], field);
    nulls_[i / 8] |= static_cast<std::byte>(unsigned{cell.isNull} << (i % 8));
    if (width == Plane::Width::Bit) {
      copied_[i / 8] |= static_cast<std::byte>(unsigned{cell.bits != 0} << (i % 8));
    } else {
      // The first bytes of the 64 are the element.
      std::memcpy(copied_.data() + i * size, secondHalves ? &cell.more : &cell.bits, size);
    }
  }
  CountNulls();
}

void RowWriter::GatherNulls(const Column& column) {
  nullBits_ = NullBits::None;
  std::uint32_t block = store::BlockOf(rows_.front());
  while (column.nulls.BlockBytes(block).empty()) {
    if (block++ == store::BlockOf(rows_.back())) {
      return;
    }
  }
  Gather(column.nulls);
  nulls_.assign(elements_.begin(), elements_.end());
  CountNulls();
}

void RowWriter::CountNulls() {
  std::uint32_t count = 0;
  for (const std::byte eight : nulls_) {
    count += static_cast<std::uint32_t>(std::popcount(std::to_integer<unsigned>(eight)));
  }
  nullBits_ = count == 0 ? NullBits::None : count == Count() ? NullBits::All : NullBits::Bitmap;
}

void RowWriter::WriteStates() {
  Gather(contents_.states);
  if (!AreEqual(elements_, 1)) {
    PutSection(kStates, Encoding::Plain, NullBits::None);
    out_.PutBytes(elements_.data(), elements_.size());
  } else if (elements_[0] != std::byte{0}) {
    PutSection(kStates, Encoding::Constant, NullBits::None);
    out_.Put(elements_[0]);
  }
}

void RowWriter::WriteColumn(std::uint16_t field) {
  const Column& column = contents_.columns[field];
  if (cells_.IsDelta()) {
    GatherCells(field);
  } else {
    GatherNulls(column);
  }
  if (nullBits_ == NullBits::All) {
    PutSection(field, Encoding::Constant, nullBits_);
    return;
  }
  if (cells_.HasHeap(field)) {
    WriteTexts(field);
  } else if (TraitsOf(column.type).storage == Storage::Large) {
    GatherNumbers(field);
    PutNumbers<std::uint32_t>(field);
  } else {
    if (!cells_.IsDelta()) {
      Gather(column.values);
    }
    PutElements(field, column.type);
  }
}

void RowWriter::PutElements(std::uint16_t field, FieldType type) {
  switch (type) {
    case FieldType::Int16:
      return PutNumbers<std::int16_t>(field);
    case FieldType::Int32:
    case FieldType::Date:
    case FieldType::Time:
      return PutNumbers<std::int32_t>(field);
    case FieldType::Text:
    case FieldType::WideText:
      return PutNumbers<std::uint32_t>(field);
    case FieldType::Int64:
    case FieldType::AutoInc:
    case FieldType::Currency:
    case FieldType::DateTime:
    case FieldType::Double:  // equal ones have equal bits
      return PutNumbers<std::int64_t>(field);
    case FieldType::Guid: {
      PutSection(field, Encoding::Plain, nullBits_);
      out_.PutBytes(elements_.data(), elements_.size());
      if (cells_.IsDelta()) {
        GatherCells(field, true);
      } else {
        Gather(contents_.columns[field].more);
      }
      break;
    }
    default:  // bits
      PutSection(field, Encoding::Plain, nullBits_);
  }
  out_.PutBytes(elements_.data(), elements_.size());
}

template <class Element>
void RowWriter::PutNumbers(std::uint16_t field) {
  Element least = std::numeric_limits<Element>::max();
  Element most = std::numeric_limits<Element>::min();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const auto element = ElementAt<Element>(elements_, i);
    least = std::min(least, element);
    most = std::max(most, element);
  }
  const std::uint64_t range = static_cast<std::uint64_t>(most) - static_cast<std::uint64_t>(least);
  const std::size_t width = range <= 0xFF ? 1 : range <= 0xFFFF ? 2 : range <= 0xFFFFFFFF ? 4 : 8;
  if (range == 0) {
    PutSection(field, Encoding::Constant, nullBits_);
    out_.Put(least);
  } else if (width >= sizeof(Element)) {
    PutSection(field, Encoding::Plain, nullBits_);
    out_.PutBytes(elements_.data(), elements_.size());
  } else {
    PutSection(field, Encoding::Narrow, nullBits_);
    out_.Put(static_cast<std::int64_t>(least));
    out_.Put(static_cast<std::uint8_t>(width));
    width == 1   ? PutNarrow<std::uint8_t>(out_, elements_, least)
    : width == 2 ? PutNarrow<std::uint16_t>(out_, elements_, least)
                 : PutNarrow<std::uint32_t>(out_, elements_, least);
  }
}

void RowWriter::WriteTexts(std::uint16_t field) {
  if (!cells_.IsDelta()) {
    Gather(contents_.columns[field].values);
  }
  for (std::uint32_t place = 0; place < Count();) {
    // A text that does not fit a chunk is written before the one that begins with it.
    if (const std::string_view text = TextAt(field, place); text.size() > kMostInRows) {
      if (out_.IsOpen()) {
        out_.End();
      }
      WriteLongText(out_, text);
    }
    PutSection(field, Encoding::Texts, place == 0 ? nullBits_ : NullBits::None);
    out_.Put(static_cast<std::uint16_t>(place));
    const std::size_t counted = out_.Place();
    out_.Put(std::uint16_t{0});
    const std::uint32_t first = place;
    place = cells_.IsDelta() ? PutTexts(field, first) : CopyTexts(field, first);
    out_.PutAt(counted, static_cast<std::uint16_t>(place - first));
  }
}

std::string_view RowWriter::TextAt(std::uint16_t field, std::uint32_t place) const noexcept {
  return IsNull(place) ? std::string_view() : cells_.At(rows_[place], field).bytes;
}

std::uint32_t RowWriter::PutTexts(std::uint16_t field, std::uint32_t place) {
  do {
    if (!IsNull(place)) {
      PutText(out_, TextAt(field, place), kMostInRows);
    }
    ++place;
  } while (place < Count() && !out_.IsFull() && TextAt(field, place).size() <= kMostInRows);
  return place;
}

std::uint32_t RowWriter::CopyTexts(std::uint16_t field, std::uint32_t place) {
  static_assert(kMostInRows == Texts::kLongest && kIsLong == Texts::kIsLarge);
  const Texts& texts = contents_.columns[field].texts;
  const auto codeAt = [&](std::uint32_t at) { return ElementAt<std::uint32_t>(elements_, at); };
  const auto isLong = [&](std::uint32_t at) { return !IsNull(at) && texts.IsLargeAt(codeAt(at)); };
  std::uint32_t first = 0;  // the place in the heap of what is not copied yet
  std::size_t size = 0;
  const auto copy = [&] {
    if (size > 0) {
      out_.PutBytes(texts.StoredAt(first).data(), size);
    }
  };
  do {
    if (!IsNull(place)) {
      const std::uint32_t code = codeAt(place);
      if (code != first + size || !Texts::AreInOneBlock(code, first)) {
        copy();
        first = code;
        size = 0;
      }
      size += texts.StoredAt(code).size();
    }
    ++place;
  } while (place < Count() && out_.Place() + size < kFullChunk && !isLong(place));
  copy();
  return place;
}

}  // namespace kiv::packet
