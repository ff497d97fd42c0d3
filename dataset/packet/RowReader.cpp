#include "dataset/packet/RowReader.h"

#include <algorithm>

namespace kiv::packet {

using store::kBlockRows;
using store::Plane;
using store::Storage;
using store::TraitsOf;

namespace {

template <class Narrow, class Element>
void Widen(std::span<const std::byte> narrow, std::int64_t least, std::byte* into) {
  for (std::size_t at = 0; at < narrow.size(); at += sizeof(Narrow), into += sizeof(Element)) {
    Narrow above;
    std::memcpy(&above, narrow.data() + at, sizeof above);
    const auto element = static_cast<Element>(static_cast<std::uint64_t>(least) + above);
    std::memcpy(into, &element, sizeof element);
  }
}

}  // namespace

std::string_view TextTaker::Take(FieldType type) {
  const auto size = in_.Take<std::uint16_t>();
  std::string_view text;
  if (size != kIsLong) {
    text = in_.TakeText(size);
  } else if (longTexts_.empty()) {
    in_.Refuse("un text lung lipseste");
  } else {
    held_ = std::move(longTexts_.front());
    longTexts_.pop_front();
    text = held_;
  }
  if (type == FieldType::WideText) {
    if (text.size() % 2 != 0) {
      in_.Refuse("un text UTF-16 are un numar impar de octeti");
    }
    // Where it stands in the chunk it need not be aligned.
    if (size != kIsLong) {
      held_.assign(text);
    }
    text = held_;
  }
  return text;
}

RowReader::RowReader(ChunkReader& in, store::BlockLoader& loader, std::span<const FieldDef> fields,
                     const std::vector<bool>& hasHeap, LongTexts& longTexts, Budget& budget, std::uint32_t rowCount)
    : in_(in),
      loader_(loader),
      fields_(fields),
      hasHeap_(hasHeap),
      texts_(in, longTexts),
      budget_(budget),
      rowCount_(rowCount) {
  for (const FieldDef& field : fields) {
    rowBytes_ += field.type == FieldType::Guid ? 16 : Plane::BytesOf(TraitsOf(field.type).width, 1);
  }
}

void RowReader::ReadChunk() {
  const auto first = in_.Take<std::uint32_t>();
  const auto rows = in_.Take<std::uint16_t>();
  if (first != done_ || (blockRows_ != 0 && rows != blockRows_)) {
    in_.Refuse("randurile nu urmeaza unul din altul");
  }
  if (blockRows_ == 0) {
    BeginBlock(rows);
  }
  while (!in_.AtEnd()) {
    if (blockRows_ == 0) {
      in_.Refuse("blocul are coloane in plus");
    }
    ReadSection();
  }
}

void RowReader::Finish() const {
  if (blockRows_ != 0 || done_ != rowCount_) {
    in_.Refuse("lipsesc randuri");
  }
}

void RowReader::BeginBlock(std::uint32_t rows) {
  if (rows == 0 || rows != std::min(kBlockRows, rowCount_ - done_)) {
    in_.Refuse("blocul nu are cate randuri trebuie");
  }
  budget_.Spend(in_, rows * rowBytes_);
  loader_.BeginBlock(rows);
  blockRows_ = rows;
  nextField_ = 0;
  textsRead_ = 0;
  hasStates_ = false;
}

void RowReader::ReadSection() {
  const auto field = in_.Take<std::uint16_t>();
  if (field == kStates && nextField_ == 0 && textsRead_ == 0 && !hasStates_) {
    hasStates_ = true;
    ReadStates();
  } else if (field == nextField_) {
    ReadColumn(field);
    if (nextField_ == fields_.size()) {
      EndBlock();
    }
  } else {
    in_.Refuse("coloanele nu sunt in ordine");
  }
}

void RowReader::ReadStates() {
  const auto encoding = in_.Take<Encoding>();
  if (in_.Take<NullBits>() != NullBits::None || (encoding != Encoding::Plain && encoding != Encoding::Constant)) {
    in_.Refuse("starile nu sunt scrise cum trebuie");
  }
  if (encoding == Encoding::Plain) {
    std::ranges::copy(in_.Take(blockRows_), loader_.States().begin());
  } else {
    std::ranges::fill(loader_.States(), in_.Take<std::byte>());
  }
}

void RowReader::ReadNulls(std::uint16_t field) {
  nullBits_ = in_.Take<NullBits>();
  const std::size_t size = Plane::BytesOf(Plane::Width::Bit, blockRows_);
  nulls_.assign(size, nullBits_ == NullBits::All ? std::byte{0xFF} : std::byte{0});
  if (nullBits_ == NullBits::None) {
    return;
  }
  const auto tail = static_cast<std::byte>(blockRows_ % 8 == 0 ? 0U : 0xFFU << (blockRows_ % 8) & 0xFFU);
  if (nullBits_ == NullBits::All) {
    nulls_.back() &= ~tail;
  } else if (nullBits_ == NullBits::Bitmap) {
    std::ranges::copy(in_.Take(size), nulls_.begin());
    if ((nulls_.back() & tail) != std::byte{0}) {
      in_.Refuse("semne de valori lipsa dincolo de ultimul rand");
    }
  } else {
    in_.Refuse("semnele valorilor lipsa nu sunt scrise cum trebuie");
  }
  std::ranges::copy(nulls_, loader_.Nulls(field).begin());
}

void RowReader::ReadColumn(std::uint16_t field) {
  const auto encoding = in_.Take<Encoding>();
  if (textsRead_ > 0) {
    if (in_.Take<NullBits>() != NullBits::None || encoding != Encoding::Texts) {
      in_.Refuse("textele unei coloane se intrerup");
    }
  } else {
    ReadNulls(field);
  }
  if (nullBits_ == NullBits::All) {
    if (encoding != Encoding::Constant) {
      in_.Refuse("o coloana fara valori nu este scrisa cum trebuie");
    }
    const auto clear = [](std::span<std::byte> elements) { std::ranges::fill(elements, std::byte{0}); };
    clear(loader_.Values(field));
    if (fields_[field].type == FieldType::Guid) {
      clear(loader_.SecondValues(field));
    }
    ++nextField_;
  } else if (hasHeap_[field]) {
    if (encoding != Encoding::Texts) {
      in_.Refuse("o coloana fara dictionar nu are texte");
    }
    ReadTexts(field);
  } else {
    ReadElements(field, encoding);
    ++nextField_;
  }
}

void RowReader::ReadElements(std::uint16_t field, Encoding encoding) {
  const FieldType type = fields_[field].type;
  switch (TraitsOf(type).width) {
    case Plane::Width::Two:
      return ReadNumbers<std::int16_t>(field, encoding);
    case Plane::Width::Four:
      return ReadNumbers<std::int32_t>(field, encoding);
    case Plane::Width::Eight:
      if (type != FieldType::Guid) {
        return ReadNumbers<std::int64_t>(field, encoding);
      }
      break;
    default:
      break;
  }
  if (encoding != Encoding::Plain) {
    in_.Refuse("o coloana nu este scrisa cum trebuie");
  }
  const auto read = [&](std::span<std::byte> elements) {
    std::ranges::copy(in_.Take(elements.size()), elements.begin());
  };
  read(loader_.Values(field));
  if (type == FieldType::Guid) {
    read(loader_.SecondValues(field));
  }
}

template <class Element>
void RowReader::ReadNumbers(std::uint16_t field, Encoding encoding) {
  const std::span<std::byte> elements = loader_.Values(field);
  if (encoding == Encoding::Plain) {
    std::memcpy(elements.data(), in_.Take(elements.size()).data(), elements.size());
  } else if (encoding == Encoding::Constant) {
    const auto element = in_.Take<Element>();
    for (std::size_t at = 0; at < elements.size(); at += sizeof element) {
      std::memcpy(elements.data() + at, &element, sizeof element);
    }
  } else if (encoding == Encoding::Narrow) {
    const auto least = in_.Take<std::int64_t>();
    const auto width = in_.Take<std::uint8_t>();
    if ((width != 1 && width != 2 && width != 4) || width >= sizeof(Element)) {
      in_.Refuse("o coloana are o latime nepermisa");
    }
    const auto narrow = in_.Take(std::size_t{blockRows_} * width);
    width == 1   ? Widen<std::uint8_t, Element>(narrow, least, elements.data())
    : width == 2 ? Widen<std::uint16_t, Element>(narrow, least, elements.data())
                 : Widen<std::uint32_t, Element>(narrow, least, elements.data());
  } else {
    in_.Refuse("o coloana nu este scrisa cum trebuie");
  }
}

void RowReader::ReadTexts(std::uint16_t field) {
  const auto first = in_.Take<std::uint16_t>();
  const auto count = in_.Take<std::uint16_t>();
  if (first != textsRead_ || count == 0 || count > blockRows_ - textsRead_) {
    in_.Refuse("textele unei coloane nu urmeaza unul din altul");
  }
  const std::uint32_t end = std::uint32_t{first} + count;
  for (std::uint32_t place = first; place < end;) {
    place = ReadStoredTexts(field, place, end);
    if (place < end && !IsNull(place)) {
      const std::string_view text = texts_.Take(fields_[field].type);
      budget_.Spend(in_, text.size());
      loader_.PutText(field, place, text);
    }
    ++place;
  }
  textsRead_ += count;
  if (textsRead_ == blockRows_) {
    textsRead_ = 0;
    ++nextField_;
  }
}

std::uint32_t RowReader::ReadStoredTexts(std::uint16_t field, std::uint32_t first, std::uint32_t end) {
  if (!budget_.Covers(in_.Rest().size())) {
    return first;
  }
  const store::BlockLoader::Put put = loader_.PutStoredTexts(field, first, end, in_.Rest());
  in_.Take(put.taken.bytes);
  budget_.Spend(in_, put.taken.bytes - put.taken.texts * sizeof(std::uint16_t));
  return put.end;
}

void RowReader::EndBlock() {
  loader_.EndBlock();
  done_ += blockRows_;
  blockRows_ = 0;
}

}  // namespace kiv::packet
