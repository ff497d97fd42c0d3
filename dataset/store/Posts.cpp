#include <algorithm>

#include "core/Numbers.h"
#include "dataset/store/Store.h"

namespace kiv::store {
namespace {

constexpr std::uint8_t AsByte(StoredState state) noexcept {
  return static_cast<std::uint8_t>(state);
}

}  // namespace

// What is checked.

void Store::CheckMayEdit() const {
  if (isLoading_ || isAsking_) {
    throw Error(contents_.owner + (isLoading_ ? ": nu se modifica in timpul incarcarii"
                                              : ": nu se modifica din cel care este anuntat de modificari"));
  }
}

void Store::BeginEdit() {
  CheckMayEdit();
  keys_.Repair();
}

void Store::CheckRequired() const {
  for (const std::uint16_t field : required_) {
    if (proposed_[field].isNull) {
      throw Error(contents_.owner + ": campul " + Quoted(contents_.schemaData->fields[field].name) +
                  " trebuie completat");
    }
  }
}

std::span<const Cell> Store::ProposedKey() {
  if (keys_.Fields().size() == 1) {
    return {&proposed_[keys_.Fields()[0]], 1};
  }
  key_.clear();
  for (const std::uint16_t field : keys_.Fields()) {
    key_.push_back(proposed_[field]);
  }
  return key_;
}

Store::KeyPlace Store::PlaceOfKey(std::uint32_t row) {
  keyBefore_.clear();
  for (const std::uint16_t field : keys_.Fields()) {
    keyBefore_.push_back(contents_.Read(row, field));
  }
  return {keys_.TagOf(keyBefore_), keyBefore_};
}

void Store::RefuseKeyOfAnother(const KeyPlace& place, std::uint32_t row) const {
  const std::uint32_t found = keys_.Find(place.tag, place.key);
  if (found != HashIndex::kNone && found != row) {
    keys_.RefuseTwice(place.key);
  }
}

void Store::CollectChanges(std::uint32_t row, std::span<const FieldValue> values) {
  changes_.clear();
  for (const FieldValue& value : values) {
    const auto field = static_cast<std::uint16_t>(DatasetView::Resolve(contents_, value.field));
    const FieldDef& definition = contents_.schemaData->fields[field];
    const Cell cell = MakeCell(definition, value.value, contents_.owner);
    // Of a field that is given twice the last value counts.
    std::erase_if(changes_, [field](const Change& change) { return change.field == field; });
    if (AreEqual(definition.type, cell, contents_.Read(row, field))) {
      continue;
    }
    if (Has(definition.flags, kReadOnly)) {
      throw Error(contents_.owner + ": campul " + Quoted(definition.name) + " nu se modifica");
    }
    if (cell.isNull && (Has(definition.flags, kRequired) || Has(definition.flags, kKey))) {
      throw Error(contents_.owner + ": campul " + Quoted(definition.name) + " trebuie completat");
    }
    changes_.push_back({field, cell});
  }
}

bool Store::ChangesKey() const noexcept {
  return std::ranges::any_of(
      changes_, [&](const Change& change) { return Has(contents_.schemaData->fields[change.field].flags, kKey); });
}

// What is made room for.

void Store::MakeRoomForInsert(std::uint32_t row, const KeyPlace& place) {
  if (row >= appendEnd_) {
    contents_.states.MakeWritable(row);
    contents_.heads.MakeWritable(row);
    appendEnd_ = std::min(contents_.heads.WritableEnd(row), contents_.states.WritableEnd(row));
  }
  contents_.log.MakeRoom(0);
  if (keys_.Exists()) {
    keys_.Reserve(place.tag);
  }
}

void Store::MakeShadowRoom(std::uint32_t row) {
  const std::uint32_t shadow = contents_.shadowCount;
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    contents_.originals[i].MakeWritable(shadow, contents_.columns[i].IsNull(row));
  }
  contents_.shadows.MakeWritable(row);
}

void Store::MakeRoomForUpdate(std::uint32_t row) {
  payload_.clear();
  for (const Change& change : changes_) {
    Column& column = contents_.columns[change.field];
    column.MakeWritable(row, change.cell.isNull);
    AppendOldValue(payload_, change.field, column.type, column.Load(row));
  }
  contents_.states.MakeWritable(row);
  contents_.heads.MakeWritable(row);
  contents_.log.MakeRoom(payload_.size());
}

// What is written.

void Store::SetState(std::uint32_t row, StoredState state) noexcept {
  --contents_.counts[AsByte(contents_.StateOf(row))];
  ++contents_.counts[AsByte(state)];
  contents_.states.Put(row, AsByte(state));
}

void Store::MakeShadow(std::uint32_t row) noexcept {
  const std::uint32_t shadow = contents_.shadowCount++;
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    contents_.originals[i].Store(shadow, contents_.columns[i].Load(row));
  }
  contents_.shadows.Put(row, shadow + 1);
}

void Store::Record(std::uint32_t row, ChangeKind kind, std::uint16_t fieldCount, std::uint8_t flags) noexcept {
  const std::uint32_t position =
      contents_.log.Append({row, contents_.LastRecordOf(row), 0, 0, kind, flags, fieldCount}, payload_);
  contents_.heads.Put(row, position + 1);
}

StoredState Store::StateByValues(std::uint32_t row) const noexcept {
  const std::uint32_t shadow = contents_.ShadowOf(row);
  if (shadow == Contents::kNone) {
    return StoredState::Unmodified;
  }
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    if (!AreEqual(contents_.columns[i].type, contents_.Read(row, i),
                  contents_.Resolve(i, contents_.originals[i].Load(shadow)))) {
      return StoredState::Modified;
    }
  }
  return StoredState::Unmodified;
}

// Posts.

std::uint32_t Store::Insert(std::span<const FieldValue> values) {
  BeginEdit();
  const std::uint32_t row = contents_.rowCount;
  if (row == kMostRows) {
    throw Error(contents_.owner + ": nu mai incape niciun rand");
  }
  Propose(values);
  const std::int64_t next = NumberAutoIncs();
  CheckRequired();
  KeyPlace place;
  if (keys_.Exists()) {
    place.key = ProposedKey();
    place.tag = keys_.TagOf(place.key);
  }
  // All that can be done without the key's place is done while that comes from memory.
  PutProposed(row);
  MakeRoomForInsert(row, place);
  if (keys_.Exists()) {
    RefuseKeyOfAnother(place, row);
  }
  if (!listeners_.empty()) {
    AskListeners(ChangeKind::Insert, row);
    // One of them may have taken a snapshot, which shares the room that was there.
    MakeRoomForInsert(row, place);
  }
  PrepareFollowers(1);
  AnnounceInsert(row);

  const RowChange change{row, false, true, {}};
  TellBefore(change);
  contents_.states.Put(row, AsByte(StoredState::Inserted));
  ++contents_.counts[AsByte(StoredState::Inserted)];
  ++contents_.rowCount;
  contents_.nextTemporary = next;
  contents_.heads.Put(row, contents_.log.Append({row, Log::kNone, 0, 0, ChangeKind::Insert, 0, 0}, {}) + 1);
  if (keys_.Exists()) {
    keys_.Insert(place.tag, place.key, row);
  }
  changes_.clear();
  TellAfter(change);
  TellDone();
  TellOf(ChangeKind::Insert, row);
  return row;
}

/// Takes the values of a new row, and those that fields have where nothing is said.
void Store::Propose(std::span<const FieldValue> values) {
  proposed_.assign(defaults_.begin(), defaults_.end());
  for (const FieldValue& value : values) {
    const std::size_t field = DatasetView::Resolve(contents_, value.field);
    MakeCellIn(proposed_[field], contents_.schemaData->fields[field], value.value, contents_.owner);
    if (keys_.IsLoneField(field)) {
      keys_.Prefetch(keys_.TagOf({&proposed_[field], 1}));
    }
  }
}

void Store::PutProposed(std::uint32_t row) {
  newRows_.Reach(contents_.columns, row);
  for (std::size_t i = 0; i < proposed_.size(); ++i) {
    Intern(i, proposed_[i]);
    PutNew(i, row, proposed_[i]);
  }
}

void Store::AnnounceInsert(std::uint32_t row) {
  if (recorder_ == nullptr) {
    return;
  }
  changes_.clear();
  for (std::size_t i = 0; i < proposed_.size(); ++i) {
    changes_.push_back({static_cast<std::uint16_t>(i), proposed_[i]});
  }
  Announce({Edit::Kind::Insert, row, changes_});
}

std::int64_t Store::NumberAutoIncs() {
  std::int64_t next = contents_.nextTemporary;
  for (const std::uint16_t field : autoIncs_) {
    Cell& cell = proposed_[field];
    if (!cell.isNull) {
      next = std::min(next, BelowOf(cell));
      continue;
    }
    if (next == kNoTemporary) {
      throw Error(contents_.owner + ": numerele temporare s-au terminat");
    }
    cell = {.bits = static_cast<std::uint64_t>(next), .isNull = false};
    --next;
  }
  return next;
}

std::int64_t Store::BelowOf(const Cell& given) noexcept {
  const auto value = static_cast<std::int64_t>(given.bits);
  return given.isNull ? -1 : value == kNoTemporary ? kNoTemporary : value - 1;
}

void Store::NoteTemporary(const Cell& given) noexcept {
  contents_.nextTemporary = std::min(contents_.nextTemporary, BelowOf(given));
}

void Store::Update(std::uint32_t row, std::span<const FieldValue> values) {
  BeginEdit();
  static_cast<void>(RequireRow(row));
  CollectChanges(row, values);
  if (changes_.empty()) {
    return;
  }
  AskListeners(ChangeKind::Update, row);
  for (Change& change : changes_) {
    Intern(change.field, change.cell);
  }
  PostChanges(row, ChangeKind::Update);
}

void Store::PostChanges(std::uint32_t row, ChangeKind kind) {
  KeyPlace before;
  KeyPlace after;
  const bool isBack = kind == ChangeKind::Restore;
  const bool placesKey = keys_.Exists() && (isBack || ChangesKey());
  if (placesKey) {
    before = PlaceOfKey(row);
    key_.assign(keyBefore_.begin(), keyBefore_.end());
    for (const Change& change : changes_) {
      const auto place = std::ranges::find(keys_.Fields(), change.field);
      if (place != keys_.Fields().end()) {
        key_[static_cast<std::size_t>(place - keys_.Fields().begin())] = change.cell;
      }
    }
    after = {keys_.TagOf(key_), key_};
    RefuseKeyOfAnother(after, row);
    keys_.Reserve(after.tag);
  }
  const bool needsShadow =
      contents_.StateOf(row) == StoredState::Unmodified && contents_.ShadowOf(row) == Contents::kNone;
  if (needsShadow) {
    MakeShadowRoom(row);
  }
  MakeRoomForUpdate(row);
  PrepareFollowers(1);
  Announce(isBack ? Edit{Edit::Kind::Restore, row} : Edit{Edit::Kind::Update, row, changes_});

  const RowChange change{row, !isBack, true, ChangedFields()};
  TellBefore(change);
  if (needsShadow) {
    MakeShadow(row);
  }
  if (placesKey) {
    if (!isBack) {
      keys_.Erase(before.tag, row);
    }
    keys_.Insert(after.tag, after.key, row);
  }
  const bool isNew = contents_.StateOf(row) == StoredState::Inserted;
  Record(row, kind, static_cast<std::uint16_t>(changes_.size()), needsShadow ? Log::kMadeShadow : 0);
  for (const Change& value : changes_) {
    contents_.columns[value.field].Store(row, value.cell);
    if (contents_.columns[value.field].type == FieldType::AutoInc) {
      NoteTemporary(value.cell);
    }
  }
  SetState(row, isNew ? StoredState::Inserted : StateByValues(row));
  TellAfter(change);
  TellDone();
  TellOf(kind, row);
}

void Store::Delete(std::uint32_t row) {
  BeginEdit();
  static_cast<void>(RequireRow(row));
  changes_.clear();
  AskListeners(ChangeKind::Delete, row);
  DeletePresent(row);
}

void Store::DeletePresent(std::uint32_t row) {
  contents_.states.MakeWritable(row);
  contents_.heads.MakeWritable(row);
  contents_.log.MakeRoom(0);
  PrepareFollowers(1);
  Announce({Edit::Kind::Delete, row});

  const RowChange change{row, true, false, {}};
  TellBefore(change);
  if (keys_.Exists()) {
    keys_.Erase(PlaceOfKey(row).tag, row);
  }
  const bool isNew = contents_.StateOf(row) == StoredState::Inserted;
  payload_.clear();
  Record(row, ChangeKind::Delete, 0);
  SetState(row, isNew ? StoredState::Gone : StoredState::Deleted);
  changes_.clear();
  TellAfter(change);
  TellDone();
  TellOf(ChangeKind::Delete, row);
}

}  // namespace kiv::store
