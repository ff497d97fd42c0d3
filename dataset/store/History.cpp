#include <algorithm>

#include "core/Numbers.h"
#include "dataset/store/Store.h"

// Taking changes back. Every record is undone in the reverse order of its making, so the row's values, its key and its
// copied originals are met as the change left them.

namespace kiv::store {
namespace {

bool HoldsKey(const Log& log, std::uint32_t record, const SchemaData& schema) noexcept {
  for (RecordReader old(log, record, schema); old.Next();) {
    if (Has(schema.fields[old.Field()].flags, kKey)) {
      return true;
    }
  }
  return false;
}

}  // namespace

Mark Store::SetMark() {
  const std::uint32_t records = contents_.log.Count();
  if (marks_.empty() || marks_.back().records != records) {
    marks_.push_back({lastMark_ + 1, records});
    ++lastMark_;
  }
  return Mark(marks_.back().serial);
}

void Store::RollbackTo(Mark mark) {
  CheckMayEdit();
  const auto found = std::ranges::find(marks_, mark.serial_, &MarkedPoint::serial);
  if (found == marks_.end()) {
    throw Error(contents_.owner + ": punctul de revenire nu mai exista");
  }
  UndoDownTo(found->records);
}

bool Store::UndoLast() {
  CheckMayEdit();
  if (contents_.log.Count() == 0) {
    return false;
  }
  UndoDownTo(contents_.log.Count() - 1);
  return true;
}

void Store::UndoTo(std::uint32_t records) {
  CheckMayEdit();
  UndoDownTo(records);
}

void Store::CancelChanges() {
  CheckMayEdit();
  UndoDownTo(0);
  ForgetHistory();
}

void Store::UndoDownTo(std::uint32_t records) {
  if (contents_.log.Count() == records) {
    return;
  }
  MakeRoomForUndo(records);
  PrepareFollowers(contents_.log.Count() - records);
  Announce({Edit::Kind::UndoTo, records});
  while (contents_.log.Count() > records) {
    Undo();
  }
  TellDone();
  std::erase_if(marks_, [records](const MarkedPoint& mark) { return mark.records > records; });
  TellOfAll();
}

void Store::MakeRoomForUndo(std::uint32_t records) {
  std::uint32_t at = contents_.log.Last();
  for (std::uint32_t left = contents_.log.Count() - records; left > 0; --left) {
    const std::uint32_t row = contents_.log.HeaderAt(at).row;
    contents_.states.MakeWritable(row);
    contents_.heads.MakeWritable(row);
    contents_.shadows.MakeWritableFor(row, true);
    for (RecordReader old(contents_.log, at, *contents_.schemaData); old.Next();) {
      contents_.columns[old.Field()].MakeWritable(row, old.Old().isNull);
    }
    at = contents_.log.Before(at);
  }
}

void Store::PutOldValues(std::uint32_t record) noexcept {
  const std::uint32_t row = contents_.log.HeaderAt(record).row;
  for (RecordReader old(contents_.log, record, *contents_.schemaData); old.Next();) {
    contents_.columns[old.Field()].Store(row, old.Old());
  }
}

std::span<const std::uint16_t> Store::ChangedFields(std::uint32_t record) noexcept {
  changedFields_.clear();
  for (RecordReader old(contents_.log, record, *contents_.schemaData); old.Next();) {
    changedFields_.push_back(old.Field());
  }
  return changedFields_;
}

void Store::Undo() noexcept {
  const std::uint32_t record = contents_.log.Last();
  const Log::Header header = contents_.log.HeaderAt(record);
  // As the row is now, and as it was before the change.
  const bool isPresent = header.kind != ChangeKind::Delete;
  const bool wasPresent = header.kind == ChangeKind::Update || header.kind == ChangeKind::Delete;
  const RowChange change{header.row, isPresent, wasPresent, ChangedFields(record)};
  TellBefore(change);
  TakeBack(record, change);
  TellAfter(change);
}

void Store::TakeBack(std::uint32_t record, const RowChange& change) noexcept {
  const Log::Header header = contents_.log.HeaderAt(record);
  const std::uint32_t row = header.row;
  const bool movesKey =
      keys_.Exists() && (change.wasThere != change.isThere || HoldsKey(contents_.log, record, *contents_.schemaData));
  if (movesKey && change.wasThere) {
    keys_.Erase(PlaceOfKey(row).tag, row);
  }
  PutOldValues(record);
  if ((header.flags & Log::kMadeShadow) != 0) {
    contents_.shadows.Put(row, std::uint32_t{0});
    --contents_.shadowCount;
  }
  if (movesKey && change.isThere) {
    const KeyPlace place = PlaceOfKey(row);
    keys_.Insert(place.tag, place.key, row);
  }
  const StoredState state = contents_.StateOf(row);
  switch (header.kind) {
    case ChangeKind::Insert:
      SetState(row, StoredState::Gone);
      break;
    case ChangeKind::Update:
      SetState(row, state == StoredState::Inserted ? state : StateByValues(row));
      break;
    case ChangeKind::Delete:
      SetState(row, state == StoredState::Gone ? StoredState::Inserted : StateByValues(row));
      break;
    case ChangeKind::Restore:
      SetState(row, StoredState::Deleted);
      break;
  }
  contents_.heads.Put(row, header.previous + 1);
  contents_.log.RemoveLast();
}

void Store::CollectOriginals(std::uint32_t row) {
  changes_.clear();
  const std::uint32_t shadow = contents_.ShadowOf(row);
  for (std::size_t i = 0; shadow != Contents::kNone && i < contents_.columns.size(); ++i) {
    const Cell original = contents_.Resolve(i, contents_.originals[i].Load(shadow));
    if (!AreEqual(contents_.columns[i].type, contents_.Read(row, i), original)) {
      changes_.push_back({static_cast<std::uint16_t>(i), original});
    }
  }
}

void Store::RevertRow(std::uint32_t row) {
  BeginEdit();
  if (row < contents_.rowCount && contents_.StateOf(row) == StoredState::Deleted) {
    CollectOriginals(row);
    PostChanges(row, ChangeKind::Restore);
    return;
  }
  static_cast<void>(RequireRow(row));
  if (contents_.StateOf(row) == StoredState::Inserted) {
    DeletePresent(row);
    return;
  }
  CollectOriginals(row);
  if (!changes_.empty()) {
    PostChanges(row, ChangeKind::Update);
  }
}

void Store::AcceptChanges() {
  CheckMayEdit();
  const Log& log = contents_.log;
  const bool hasChanges = log.Count() > 0;
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    contents_.states.MakeWritable(log.HeaderAt(at).row);
  }
  if (hasChanges) {
    Announce({Edit::Kind::Accept});
  }
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    const std::uint32_t row = log.HeaderAt(at).row;
    const StoredState state = contents_.StateOf(row);
    SetState(row, state >= StoredState::Deleted ? StoredState::Gone : StoredState::Unmodified);
  }
  ForgetHistory();
  if (hasChanges) {
    TellOfAll();
  }
}

void Store::ForgetHistory() noexcept {
  contents_.log.Clear();
  contents_.heads.Clear();
  contents_.shadows.Clear();
  contents_.shadowCount = 0;
  for (ColumnPlanes& planes : contents_.originals) {
    planes.values.Clear();
    planes.more.Clear();
    planes.nulls.Clear();
  }
  marks_.clear();
  appendEnd_ = 0;
}

std::shared_ptr<const Contents> Store::CopyContents() {
  auto copy = std::make_shared<Contents>(contents_);
  // They read other datasets, which are no part of what stays as it is.
  copy->calculated = nullptr;
  appendEnd_ = 0;
  newRows_.Forget();
  return copy;
}

}  // namespace kiv::store
