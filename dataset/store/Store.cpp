#include "dataset/store/Store.h"

#include <algorithm>

#include "core/Numbers.h"
#include "dataset/store/Hash.h"

namespace kiv::store {

Store::Store(TextView name, const Schema& schema)
    : contents_(name, schema),
      keys_(contents_),
      dictionaries_(contents_.columns.size()),
      textSeed_(reinterpret_cast<std::uintptr_t>(this)) {
  std::size_t payload = 0;
  const auto& fields = contents_.schemaData->fields;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const FieldDef& field = fields[i];
    defaults_.push_back(MakeCell(field, field.defaultValue, contents_.owner));
    const auto index = static_cast<std::uint16_t>(i);
    if (field.type == FieldType::AutoInc) {
      autoIncs_.push_back(index);
    }
    if (Has(field.flags, kRequired) || Has(field.flags, kKey)) {
      required_.push_back(index);
    }
    payload += sizeof index + BytesInRecord(field.type, TraitsOf(field.type));
  }
  proposed_.reserve(fields.size());
  changes_.reserve(fields.size());
  changedFields_.reserve(fields.size());
  key_.reserve(keys_.Fields().size());
  keyBefore_.reserve(keys_.Fields().size());
  payload_.reserve(payload);
}

Store::~Store() {
  if (followers_ != nullptr) {
    followers_->StoreIsGone();
  }
}

std::shared_ptr<Followers> Store::GetFollowers() {
  if (followers_ == nullptr) {
    followers_ = std::make_shared<Followers>(*this, contents_.columns.size());
  }
  return followers_;
}

void Store::SetRecorder(EditRecorder* recorder) {
  if (recorder != nullptr && recorder_ != nullptr) {
    throw Error(contents_.owner + ": are deja un jurnal");
  }
  recorder_ = recorder;
}

std::uint32_t Store::RequireRow(std::uint32_t row) const {
  const StoredState state = row < contents_.rowCount ? contents_.StateOf(row) : StoredState::Gone;
  if (state == StoredState::Gone || state == StoredState::Deleted) {
    Text message = contents_.owner + ": randul ";
    AppendDecimal(message, row);
    throw Error(message + (state == StoredState::Gone ? " nu exista" : " este sters"));
  }
  return row;
}

std::uint32_t Store::Find(std::span<const ValueView> key) {
  keys_.Repair();
  if (key.size() != keys_.Fields().size() || key.empty()) {
    Text message = contents_.owner + ": cheia are ";
    AppendDecimal(message, keys_.Fields().size());
    message += " campuri, nu ";
    AppendDecimal(message, key.size());
    throw Error(message);
  }
  const auto cellAt = [&](std::size_t i) {
    return MakeCell(contents_.schemaData->fields[keys_.Fields()[i]], key[i], contents_.owner);
  };
  const auto find = [&](std::span<const Cell> cells) {
    const bool hasNull = std::ranges::any_of(cells, &Cell::isNull);
    return hasNull ? HashIndex::kNone : keys_.Find(keys_.TagOf(cells), cells);
  };
  if (key.size() == 1) {
    const Cell cell = cellAt(0);
    return find({&cell, 1});
  }
  std::vector<Cell> cells;
  for (std::size_t i = 0; i < key.size(); ++i) {
    cells.push_back(cellAt(i));
  }
  return find(cells);
}

void Store::InternBytes(std::size_t field, Cell& cell) {
  const bool isText = TraitsOf(contents_.columns[field].type).storage == Storage::Texts;
  cell.bits = isText ? InternText(field, cell.bytes) : contents_.large.Add(cell.bytes);
}

std::uint32_t Store::TextTag(std::string_view bytes) const noexcept {
  return HashBytes(bytes.data(), bytes.size(), textSeed_);
}

std::uint32_t Store::FindOrAddEntry(std::size_t field, std::string_view bytes) {
  Texts& texts = contents_.columns[field].texts;
  HashIndex& dictionary = dictionaries_[field];
  const std::uint32_t tag = TextTag(bytes);
  const std::uint32_t found =
      dictionary.Find(tag, [&](std::uint32_t code) { return texts.Read(code, contents_.large) == bytes; });
  if (found != HashIndex::kNone) {
    return found;
  }
  dictionary.Reserve(tag);
  const std::uint32_t code = texts.AddEntry(bytes, contents_.large);
  dictionary.Insert(tag, code);
  return code;
}

std::uint32_t Store::InternText(std::size_t field, std::string_view bytes) {
  constexpr std::uint32_t kWorthwhile = 65'536;
  const Texts& texts = contents_.columns[field].texts;
  if (texts.EntryCount() > kWorthwhile && texts.EntryCount() > (contents_.rowCount + pendingRows_) / 2) {
    DropDictionary(field);
  }
  return texts.HasDictionary() ? FindOrAddEntry(field, bytes)
                               : contents_.columns[field].texts.Append(bytes, contents_.large);
}

void Store::DropDictionary(std::size_t field) {
  Column& column = contents_.columns[field];
  ColumnPlanes& originals = contents_.originals[field];
  column.values.MakeAllWritable();
  originals.values.MakeAllWritable();
  contents_.log.MakeAllWritable();
  // From here on nothing fails.
  const auto replaceIn = [&](ColumnPlanes& planes, std::uint32_t count) {
    for (std::uint32_t row = 0; row < count; ++row) {
      if (!planes.IsNull(row)) {
        planes.values.Put(row, column.texts.PlaceOfEntry(planes.values.At<std::uint32_t>(row)));
      }
    }
  };
  replaceIn(column, contents_.rowCount + pendingRows_);
  replaceIn(originals, contents_.shadowCount);
  const Log& log = contents_.log;
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    for (RecordReader old(log, at, *contents_.schemaData); old.Next();) {
      if (old.Field() == field && !old.Old().isNull) {
        const std::uint32_t place = column.texts.PlaceOfEntry(static_cast<std::uint32_t>(old.Old().bits));
        std::memcpy(old.Place(), &place, sizeof place);
      }
    }
  }
  column.texts.DropDictionary();
  dictionaries_[field].Clear();
}

}  // namespace kiv::store
