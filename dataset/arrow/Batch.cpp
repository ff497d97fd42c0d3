#include <array>
#include <bit>
#include <cstring>
#include <span>

#include "dataset/arrow/Epoch.h"
#include "dataset/arrow/Source.h"
#include "dataset/store/SchemaData.h"

namespace kiv::arrow {
namespace {

using store::Column;
using store::kBlockRows;

/// What an array points to.
struct HeldArray {
  std::shared_ptr<const Source> source;
  std::array<const void*, 3> buffers{};
  Memory valid;
  Memory values;
  TextBuffers texts;
  std::vector<OwnedArray> children;
  std::vector<ArrowArray*> addresses;
  OwnedArray dictionary;
};

void ReleaseArray(ArrowArray* array) {
  // The children that have not been moved go with it.
  delete static_cast<HeldArray*>(array->private_data);
  array->release = nullptr;
}

OwnedArray ArrayOf(std::unique_ptr<HeldArray> held, std::size_t length, std::size_t nulls, std::int64_t buffers) {
  ArrowArray array{};
  array.length = static_cast<std::int64_t>(length);
  array.null_count = static_cast<std::int64_t>(nulls);
  array.n_buffers = buffers;
  array.buffers = held->buffers.data();
  for (OwnedArray& child : held->children) {
    held->addresses.push_back(child.Get());
  }
  array.n_children = static_cast<std::int64_t>(held->children.size());
  array.children = held->addresses.data();
  array.dictionary = held->dictionary->release == nullptr ? nullptr : held->dictionary.Get();
  array.release = ReleaseArray;
  array.private_data = held.release();
  return OwnedArray(array);
}

/// Makes the arrays of one block.
class BatchMaker {
 public:
  BatchMaker(const std::shared_ptr<const Source>& source, std::uint32_t block)
      : source_(source), contents_(source->Contents()), block_(block), first_(block * kBlockRows) {
    const std::uint32_t rows = contents_.RowsIn(block);
    for (std::uint32_t place = 0; place < rows; ++place) {
      if (contents_.IsPresent(first_ + place)) {
        kept_.push_back(static_cast<std::uint16_t>(place));
      }
    }
    isWhole_ = kept_.size() == rows;
  }

  OwnedArray Make() {
    auto batch = std::make_unique<HeldArray>();
    batch->source = source_;
    batch->children.reserve(contents_.columns.size());
    for (std::size_t field = 0; field < contents_.columns.size() && !kept_.empty(); ++field) {
      batch->children.push_back(MakeColumn(field));
    }
    return kept_.empty() ? OwnedArray() : ArrayOf(std::move(batch), kept_.size(), 0, 1);
  }

 private:
  OwnedArray MakeColumn(std::size_t field) {
    const Column& column = contents_.columns[field];
    const Form& form = source_->forms[field];
    auto held = std::make_unique<HeldArray>();
    held->source = source_;
    const std::size_t nulls = PutValid(column, *held);
    if (form.dictionary != nullptr) {
      PutElements<std::uint32_t>(column, *held);
      held->dictionary = MakeDictionary(field);
    } else if (store::TraitsOf(column.type).storage != store::Storage::Fixed) {
      PutTexts(field, *held);
      return ArrayOf(std::move(held), kept_.size(), nulls, 3);
    } else {
      PutFixed(column, form, *held);
    }
    return ArrayOf(std::move(held), kept_.size(), nulls, 2);
  }

  /// The bits of what is not null, where anything is; returns how many are.
  std::size_t PutValid(const Column& column, HeldArray& held) const {
    if (column.nulls.BlockBytes(block_).empty()) {
      return 0;
    }
    std::size_t nulls = 0;
    held.valid = Bits([&](std::uint32_t row) {
      const bool isNull = column.IsNull(row);
      nulls += isNull ? 1 : 0;
      return !isNull;
    });
    held.buffers[0] = nulls == 0 ? nullptr : held.valid.get();
    return nulls;
  }

  template <class IsSet>
  [[nodiscard]] Memory Bits(IsSet isSet) const {
    auto bits = std::make_unique<std::byte[]>((kept_.size() + 7) / 8);
    for (std::size_t i = 0; i < kept_.size(); ++i) {
      bits[i / 8] |= std::byte{static_cast<std::uint8_t>(isSet(first_ + kept_[i]) ? 1U << (i % 8) : 0)};
    }
    return bits;
  }

  void PutFixed(const Column& column, const Form& form, HeldArray& held) {
    switch (column.type) {
      case FieldType::Int16:
        return PutElements<std::int16_t>(column, held);
      case FieldType::Int32:
      case FieldType::Time:
        return PutElements<std::int32_t>(column, held);
      case FieldType::Currency:
        if (form.format[0] != 'l') {
          // Its sign goes on in the upper half.
          return Convert<std::array<std::int64_t, 2>>(held, [&](std::uint32_t row) {
            const auto raw = column.values.At<std::int64_t>(row);
            return std::array{raw, raw < 0 ? std::int64_t{-1} : std::int64_t{0}};
          });
        }
        return PutElements<std::int64_t>(column, held);
      case FieldType::Date:
        return Convert<std::int32_t>(
            held, [&](std::uint32_t row) { return column.values.At<std::int32_t>(row) - kEpochDay; });
      case FieldType::DateTime:
        return Convert<std::int64_t>(
            held, [&](std::uint32_t row) { return column.values.At<std::int64_t>(row) - kEpochMoment; });
      case FieldType::Boolean:
        if (isWhole_) {
          held.buffers[1] = column.values.BlockAt(first_);
          return;
        }
        held.values = Bits([&](std::uint32_t row) { return column.values.BitAt(row); });
        held.buffers[1] = held.values.get();
        return;
      case FieldType::Guid:
        return Convert<std::array<std::uint64_t, 2>>(held, [&](std::uint32_t row) {
          return std::array{InTextOrder(column.values.At<std::uint64_t>(row)),
                            InTextOrder(column.more.At<std::uint64_t>(row))};
        });
      default:
        return PutElements<std::int64_t>(column, held);  // integers and doubles of eight bytes
    }
  }

  static std::uint64_t InTextOrder(std::uint64_t half) noexcept { return __builtin_bswap64(half); }

  /// The elements as they are: those of the dataset itself where no row is left out.
  template <class Element>
  void PutElements(const Column& column, HeldArray& held) {
    if (isWhole_) {
      held.buffers[1] = column.values.BlockAt(first_);
    } else {
      Convert<Element>(held, [&](std::uint32_t row) { return column.values.At<Element>(row); });
    }
  }

  template <class Element, class Make>
  void Convert(HeldArray& held, Make make) {
    held.values = std::make_unique_for_overwrite<std::byte[]>(kept_.size() * sizeof(Element));
    for (std::size_t i = 0; i < kept_.size(); ++i) {
      const Element element = make(first_ + kept_[i]);
      std::memcpy(held.values.get() + i * sizeof element, &element, sizeof element);
    }
    held.buffers[1] = held.values.get();
  }

  void PutTexts(std::size_t field, HeldArray& held) const {
    TextGatherer gatherer(kept_.size(), source_->forms[field].isLong);
    for (const std::uint16_t place : kept_) {
      gatherer.Put(contents_.columns[field].type, contents_.Read(first_ + place, field).bytes);
    }
    held.texts = gatherer.Take();
    PointTo(held.texts, held);
  }

  static void PointTo(const TextBuffers& texts, HeldArray& held) noexcept {
    held.buffers[1] = texts.offsets.get();
    held.buffers[2] = texts.bytes.data();
  }

  [[nodiscard]] OwnedArray MakeDictionary(std::size_t field) const {
    const DictionaryTexts& dictionary = source_->dictionaries[field];
    auto held = std::make_unique<HeldArray>();
    held->source = source_;
    PointTo(dictionary.texts, *held);
    return ArrayOf(std::move(held), dictionary.count, 0, 3);
  }

  const std::shared_ptr<const Source>& source_;
  const store::Contents& contents_;
  std::uint32_t block_;
  std::uint32_t first_;
  std::vector<std::uint16_t> kept_;  // the places of the block's rows that are not deleted
  bool isWhole_;
};

}  // namespace

OwnedArray MakeBatch(const std::shared_ptr<const Source>& source, std::uint32_t block) {
  return BatchMaker(source, block).Make();
}

}  // namespace kiv::arrow
