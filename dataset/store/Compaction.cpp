#include "dataset/store/Store.h"

namespace kiv::store {

/// Copies what is still needed of a store into a fresh one: rows that exist or that a record of the log names, the
/// texts and large values that they or the log use, the log itself with the rows' new numbers.
class Store::Compactor {
 public:
  explicit Compactor(const Store& from) : from_(from.contents_), to_(from.contents_.name, from.contents_.schema) {}

  Store& Run() {
    CopyRows();
    CopyLog();
    to_.contents_.nextTemporary = from_.nextTemporary;
    to_.keys_.Build(to_.contents_.rowCount);
    return to_;
  }

  /// For each row that is kept its number.
  [[nodiscard]] const Plane& Numbers() const noexcept { return numbers_; }

 private:
  Cell Take(std::size_t field, const Cell& cell) {
    Cell taken = from_.Resolve(field, cell);
    to_.Intern(field, taken);
    return taken;
  }

  void CopyRows() {
    for (std::uint32_t row = 0; row < from_.rowCount; ++row) {
      if (from_.StateOf(row) == StoredState::Gone && from_.LastRecordOf(row) == Log::kNone) {
        continue;
      }
      numbers_.MakeWritable(row);
      numbers_.Put(row, to_.contents_.rowCount);
      CopyRow(row);
    }
  }

  void CopyRow(std::uint32_t row) {
    Contents& to = to_.contents_;
    const std::uint32_t number = to.rowCount;
    for (std::size_t i = 0; i < from_.columns.size(); ++i) {
      const Cell cell = Take(i, from_.columns[i].Load(row));
      to.columns[i].MakeWritable(number, cell.isNull);
      to.columns[i].Store(number, cell);
    }
    const StoredState state = from_.StateOf(row);
    to.states.MakeWritableFor(number, state == StoredState::Unmodified);
    if (state != StoredState::Unmodified) {
      to.states.Put(number, static_cast<std::uint8_t>(state));
    }
    ++to.counts[static_cast<std::size_t>(state)];
    ++to.rowCount;
  }

  void CopyLog() {
    for (std::uint32_t at = from_.log.First(); at != Log::kNone; at = from_.log.Next(at)) {
      const Log::Header header = from_.log.HeaderAt(at);
      const auto row = numbers_.At<std::uint32_t>(header.row);
      payload_.clear();
      for (RecordReader old(from_.log, at, *from_.schemaData); old.Next();) {
        AppendOldValue(payload_, old.Field(), from_.columns[old.Field()].type, Take(old.Field(), old.Old()));
      }
      if ((header.flags & Log::kMadeShadow) != 0) {
        CopyShadow(from_.ShadowOf(header.row), row);
      }
      to_.contents_.heads.MakeWritable(row);
      to_.contents_.log.MakeRoom(payload_.size());
      to_.payload_ = payload_;
      to_.Record(row, header.kind, header.fieldCount, header.flags);
    }
  }

  void CopyShadow(std::uint32_t shadow, std::uint32_t row) {
    Contents& to = to_.contents_;
    for (std::size_t i = 0; i < from_.columns.size(); ++i) {
      const Cell cell = Take(i, from_.originals[i].Load(shadow));
      to.originals[i].MakeWritable(to.shadowCount, cell.isNull);
      to.originals[i].Store(to.shadowCount, cell);
    }
    to.shadows.MakeWritable(row);
    to.shadows.Put(row, ++to.shadowCount);
  }

  const Contents& from_;
  Store to_;
  Plane numbers_{Plane::Width::Four, Plane::Filled::Zeros};
  std::vector<std::byte> payload_;
};

void Store::Compact() {
  CheckMayEdit();
  Compactor compactor(*this);
  Store& compacted = compactor.Run();
  Announce({Edit::Kind::Compact});
  // The schema's copy stays: its address is in the field references that users hold.
  compacted.contents_.owner.swap(contents_.owner);
  compacted.contents_.name.swap(contents_.name);
  compacted.contents_.schema = contents_.schema;
  compacted.contents_.schemaData = contents_.schemaData;
  compacted.contents_.calculated = std::move(contents_.calculated);
  contents_ = std::move(compacted.contents_);
  dictionaries_ = std::move(compacted.dictionaries_);
  textSeed_ = compacted.textSeed_;
  keys_.TakeOver(compacted.keys_);
  appendEnd_ = 0;
  newRows_.Forget();
  if (followers_ != nullptr) {
    followers_->Renumbered(compactor.Numbers());
  }
  TellOfAll();
}

}  // namespace kiv::store
