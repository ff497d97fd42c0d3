#include "dataset/store/BlockLoader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "core/Numbers.h"
#include "dataset/store/Hash.h"
#include "dataset/store/KeyHistory.h"

namespace kiv::store {
namespace {

template <class Element>
Element ElementAt(const std::byte* elements, std::uint32_t place) noexcept {
  Element element;
  std::memcpy(&element, elements + place * sizeof element, sizeof element);
  return element;
}

template <class Element>
std::pair<Element, Element> LeastAndMost(const std::byte* elements, std::uint32_t count) noexcept {
  Element least = std::numeric_limits<Element>::max();
  Element most = std::numeric_limits<Element>::min();
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto element = ElementAt<Element>(elements, i);
    least = std::min(least, element);
    most = std::max(most, element);
  }
  return {least, most};
}

/// Whether none is no number, and none a zero with a sign.
bool AreNumbers(const std::byte* elements, std::uint32_t count) noexcept {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  constexpr std::uint64_t kInfinity = std::uint64_t{0x7FF} << 52U;
  bool are = true;
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto bits = ElementAt<std::uint64_t>(elements, i);
    are = are && (bits & ~kSign) <= kInfinity && bits != kSign;
  }
  return are;
}

}  // namespace

BlockLoader::BlockLoader(TextView name, const Schema& schema, Purpose purpose)
    : store_(std::make_unique<Store>(name, schema)),
      contents_(store_->contents_),
      purpose_(purpose),
      isPut_(contents_.columns.size()) {}

void BlockLoader::Refuse(std::size_t field, std::uint32_t row, TextView why) const {
  Text message = contents_.owner + ": campul " + Quoted(contents_.schemaData->fields[field].name) + ", randul ";
  AppendDecimal(message, row);
  throw Error(message.append(": ").append(why));
}

void BlockLoader::UseHeap(std::size_t field) {
  contents_.columns[field].texts.DropDictionary();
}

std::uint32_t BlockLoader::AddEntry(std::size_t field, std::string_view bytes) {
  CheckCell(contents_.schemaData->fields[field], {.bytes = bytes, .isNull = false}, contents_.owner);
  Texts& texts = contents_.columns[field].texts;
  const std::uint32_t tag = store_->TextTag(bytes);
  HashIndex& dictionary = store_->dictionaries_[field];
  const auto isSame = [&](std::uint32_t code) { return texts.Read(code, contents_.large) == bytes; };
  if (!texts.HasDictionary() || dictionary.Find(tag, isSame) != HashIndex::kNone) {
    Refuse(field, texts.EntryCount(), "textul apare de doua ori in dictionar");
  }
  dictionary.Reserve(tag);
  const std::uint32_t code = texts.AddEntry(bytes, contents_.large);
  dictionary.Insert(tag, code);
  return code;
}

std::uint32_t BlockLoader::AddLarge(std::string_view bytes) {
  return contents_.large.Add(bytes);
}

void BlockLoader::BeginBlock(std::uint32_t rows) {
  if (rows == 0 || rows > kBlockRows || contents_.rowCount % kBlockRows != 0 || kMostRows - contents_.rowCount < rows) {
    throw Error(contents_.owner + ": un bloc are un numar nepermis de randuri");
  }
  blockRows_ = rows;
  store_->pendingRows_ = 0;
  isPut_.assign(isPut_.size(), false);
  for (Column& column : contents_.columns) {
    column.values.MakeWritable(contents_.rowCount + rows - 1);
    if (column.type == FieldType::Guid) {
      column.more.MakeWritable(contents_.rowCount + rows - 1);
    }
    if (TraitsOf(column.type).storage == Storage::Texts) {
      // So that a row whose text the reader forgets has one, not any place in memory.
      std::memset(column.values.WritableBlock(contents_.rowCount), 0, Plane::BytesOf(Plane::Width::Four, rows));
    }
  }
}

std::span<std::byte> BlockLoader::Values(std::size_t field) {
  Plane& values = contents_.columns[field].values;
  return {values.WritableBlock(contents_.rowCount), Plane::BytesOf(values.ElementWidth(), blockRows_)};
}

std::span<std::byte> BlockLoader::SecondValues(std::size_t field) {
  return {contents_.columns[field].more.WritableBlock(contents_.rowCount), std::size_t{blockRows_} * 8};
}

std::span<std::byte> BlockLoader::Nulls(std::size_t field) {
  Plane& nulls = contents_.columns[field].nulls;
  nulls.MakeWritable(contents_.rowCount + blockRows_ - 1);
  return {nulls.WritableBlock(contents_.rowCount), Plane::BytesOf(Plane::Width::Bit, blockRows_)};
}

std::span<std::byte> BlockLoader::States() {
  contents_.states.MakeWritable(contents_.rowCount + blockRows_ - 1);
  return {contents_.states.WritableBlock(contents_.rowCount), blockRows_};
}

void BlockLoader::PutText(std::size_t field, std::uint32_t rowInBlock, std::string_view bytes) {
  CheckCell(contents_.schemaData->fields[field], {.bytes = bytes, .isNull = false}, contents_.owner);
  isPut_[field] = true;
  Column& column = contents_.columns[field];
  const std::uint32_t code =
      column.texts.HasDictionary() ? store_->FindOrAddEntry(field, bytes) : column.texts.Append(bytes, contents_.large);
  column.values.Put(contents_.rowCount + rowInBlock, code);
}

BlockLoader::Put BlockLoader::PutStoredTexts(std::size_t field, std::uint32_t first, std::uint32_t end,
                                             std::span<const std::byte> stored) {
  Column& column = contents_.columns[field];
  const FieldDef& definition = contents_.schemaData->fields[field];
  if (column.texts.HasDictionary() || definition.type != FieldType::Text) {
    return {first, {}};
  }
  const std::uint32_t before = contents_.rowCount;
  std::size_t wanted = 0;
  for (std::uint32_t row = first; row < end; ++row) {
    wanted += column.IsNull(before + row) ? 0 : 1;
  }
  const auto size = static_cast<std::size_t>(definition.size);
  places_.resize(wanted);
  const Texts::Taken taken =
      column.texts.AppendStored(stored, size == 0 ? Texts::kLongest : std::min(size, Texts::kLongest), places_);
  isPut_[field] = isPut_[field] || taken.texts > 0;
  std::uint32_t row = first;
  for (std::size_t next = 0; row < end; ++row) {
    if (!column.IsNull(before + row)) {
      if (next == taken.texts) {
        break;
      }
      column.values.Put(before + row, places_[next++]);
    }
  }
  return {row, taken};
}

void BlockLoader::CheckNumber(std::size_t field, const Cell& cell, std::uint32_t row) const {
  const Column& column = contents_.columns[field];
  const Storage storage = TraitsOf(column.type).storage;
  const std::uint32_t count = storage == Storage::Texts ? column.texts.EntryCount() : contents_.large.Count();
  if (storage != Storage::Fixed && cell.bits >= count) {
    Refuse(field, row, "trimite la o valoare care nu exista");
  }
}

/// A ticket leaves out the values that its receiver does not need.
bool BlockLoader::MayBeNull(const FieldDef& field, std::uint32_t row) const noexcept {
  if (!Has(field.flags, kRequired) && !Has(field.flags, kKey)) {
    return true;
  }
  const StoredState state = contents_.StateOf(row);
  return purpose_ == Purpose::Delta ? !Has(field.flags, kKey) && !field.IsChecked() && state != StoredState::Inserted
                                    : state == StoredState::Gone;
}

/// Nulls hold zeros, whatever the reader has left there.
void BlockLoader::ClearNulls(std::size_t field, std::uint32_t first, std::uint32_t rows) {
  Column& column = contents_.columns[field];
  const FieldDef& definition = contents_.schemaData->fields[field];
  if (column.nulls.BlockBytes(BlockOf(first)).empty()) {
    return;
  }
  for (std::uint32_t row = first; row < first + rows; ++row) {
    if (column.IsNull(row)) {
      if (!MayBeNull(definition, row)) {
        Refuse(field, row, "trebuie completat");
      }
      column.Store(row, {});
    }
  }
}

void BlockLoader::CheckColumn(std::size_t field, std::uint32_t first, std::uint32_t rows) {
  const FieldDef& definition = contents_.schemaData->fields[field];
  const Column& column = contents_.columns[field];
  ClearNulls(field, first, rows);
  if (!column.texts.HasDictionary()) {
    for (std::uint32_t row = first; !isPut_[field] && row < first + rows; ++row) {
      if (!column.IsNull(row)) {
        Refuse(field, row, "textul lipseste");
      }
    }
    return;
  }
  const Storage storage = TraitsOf(column.type).storage;
  // All at once first; what is wrong is looked for only where something is.
  if (IsAllowed(field, first, rows)) {
    return;
  }
  for (std::uint32_t row = first; row < first + rows; ++row) {
    const Cell cell = column.Load(row);
    if (storage == Storage::Fixed) {
      CheckCell(definition, cell, contents_.owner);
    } else if (!cell.isNull) {
      CheckNumber(field, cell, row);
    }
  }
}

bool BlockLoader::IsAllowed(std::size_t field, std::uint32_t first, std::uint32_t rows) {
  const Column& column = contents_.columns[field];
  const std::byte* const elements = column.values.BlockAt(first);
  const Storage storage = TraitsOf(column.type).storage;
  if (storage != Storage::Fixed) {
    const std::uint32_t count = storage == Storage::Texts ? column.texts.EntryCount() : contents_.large.Count();
    return LeastAndMost<std::uint32_t>(elements, rows).second < count;
  }
  const NumberRange range = RangeOf(column.type);
  switch (column.type) {
    case FieldType::Double:
      return AreNumbers(elements, rows);
    case FieldType::Date:
    case FieldType::Time: {
      const auto [least, most] = LeastAndMost<std::int32_t>(elements, rows);
      return least >= range.least && most <= range.most;
    }
    case FieldType::DateTime: {
      const auto [least, most] = LeastAndMost<std::int64_t>(elements, rows);
      return least >= range.least && most <= range.most;
    }
    case FieldType::AutoInc: {
      const auto least = static_cast<std::uint64_t>(LeastAndMost<std::int64_t>(elements, rows).first);
      store_->NoteTemporary({.bits = least, .isNull = false});
      return true;
    }
    default:
      return true;
  }
}

void BlockLoader::CheckStates(std::uint32_t first, std::uint32_t rows) {
  for (std::uint32_t row = first; row < first + rows; ++row) {
    const auto state = static_cast<std::size_t>(contents_.StateOf(row));
    if (state >= kStates) {
      Refuse(0, row, "starea nu exista");
    }
    ++contents_.counts[state];
  }
}

void BlockLoader::EndBlock() {
  const std::uint32_t first = contents_.rowCount;
  CheckStates(first, blockRows_);
  for (std::size_t field = 0; field < contents_.columns.size(); ++field) {
    CheckColumn(field, first, blockRows_);
  }
  contents_.rowCount += blockRows_;
  blockRows_ = 0;
}

void BlockLoader::ReachRow() {
  const std::uint32_t row = contents_.rowCount;
  if (row >= kMostRows) {
    throw Error(contents_.owner + ": nu mai incape niciun rand");
  }
  store_->newRows_.Reach(contents_.columns, row);
  rowsEnd_ = store_->newRows_.End();
}

void BlockLoader::PutBytes(std::size_t field, std::string_view bytes) {
  const bool isText = TraitsOf(contents_.columns[field].type).storage == Storage::Texts;
  PutFixed(field, isText ? store_->InternText(field, bytes) : contents_.large.Add(bytes));
}

void BlockLoader::PutNull(std::size_t field) {
  Plane& nulls = contents_.columns[field].nulls;
  nulls.MakeWritable(contents_.rowCount);
  nulls.PutBit(contents_.rowCount, true);
  PutFixed(field, {});
}

void BlockLoader::AddRow(std::span<Cell> cells, StoredState state) {
  BeginRow();
  const std::uint32_t row = contents_.rowCount;
  contents_.states.MakeWritableFor(row, state == StoredState::Unmodified);
  if (state != StoredState::Unmodified) {
    contents_.states.Put(row, state);
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const Cell& cell = cells[i];
    const FieldDef& field = contents_.schemaData->fields[i];
    if (cell.isNull) {
      if (!MayBeNull(field, row)) {
        throw Error(contents_.owner + ": campul " + Quoted(field.name) + " trebuie completat");
      }
      PutNull(i);
      continue;
    }
    CheckCell(field, cell, contents_.owner);
    if (TraitsOf(field.type).storage == Storage::Fixed) {
      PutFixed(i, cell);
    } else {
      PutBytes(i, cell.bytes);
    }
    if (field.type == FieldType::AutoInc) {
      NoteAutoInc(cell);
    }
  }
  EndRow(state);
}

void BlockLoader::PutOldBytes(std::size_t field, Cell& cell) {
  if (!cell.isNull && contents_.columns[field].texts.HasDictionary()) {
    CheckCell(contents_.schemaData->fields[field], cell, contents_.owner);
    store_->Intern(field, cell);
  }
}

void BlockLoader::SetNextTemporary(std::int64_t next) {
  if (next > contents_.nextTemporary) {
    throw Error(contents_.owner + ": urmatorul numar temporar este deja folosit");
  }
  contents_.nextTemporary = next;
}

std::unique_ptr<Store> BlockLoader::Finish() {
  RebuildOriginals();
  CheckStatesAgainstLog();
  store_->keys_.Build(contents_.rowCount);
  if (purpose_ == Purpose::Delta) {
    CheckTickets();
    CheckOriginalKeys(contents_, store_->keys_);
  } else {
    CheckRowsThatMayComeBack();
    CheckKeyHistory(contents_, store_->keys_);
  }
  return std::move(store_);
}

}  // namespace kiv::store
