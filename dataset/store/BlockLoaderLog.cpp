#include <algorithm>

#include "dataset/store/BlockLoader.h"

// The log that comes with the rows: each record is checked as it comes, and what only all of them together can be
// wrong in at the end.

namespace kiv::store {

void BlockLoader::CheckOrder(ChangeKind kind, std::uint32_t row) const {
  const std::uint32_t previous = contents_.LastRecordOf(row);
  const bool isFirst = previous == Log::kNone;
  const bool isDeleted = !isFirst && contents_.log.HeaderAt(previous).kind == ChangeKind::Delete;
  const bool fits = kind == ChangeKind::Insert    ? isFirst
                    : kind == ChangeKind::Restore ? isDeleted && !isNew_.BitAt(row)
                                                  : !isDeleted;
  if (!fits) {
    Refuse(0, row, "modificarile randului nu urmeaza una din alta");
  }
}

void BlockLoader::CheckOldValue(OldValue& old, std::uint32_t row) {
  const FieldDef& field = contents_.schemaData->fields[old.field];
  if (old.cell.isNull) {
    if (Has(field.flags, kRequired) || Has(field.flags, kKey)) {
      Refuse(old.field, row, "trebuie completat");
    }
    old.cell = {};
  } else if (TraitsOf(field.type).storage == Storage::Texts && !contents_.columns[old.field].texts.HasDictionary()) {
    CheckCell(field, old.cell, contents_.owner);
    old.cell.bits = contents_.columns[old.field].texts.Append(old.cell.bytes, contents_.large);
  } else {
    CheckNumber(old.field, old.cell, row);
    CheckCell(field, contents_.Resolve(old.field, old.cell), contents_.owner);
    if (field.type == FieldType::AutoInc) {
      store_->NoteTemporary(old.cell);
    }
  }
}

void BlockLoader::AddRecord(ChangeKind kind, std::uint32_t row, std::span<const OldValue> old) {
  const bool hasValues = kind == ChangeKind::Update || kind == ChangeKind::Restore;
  if (row >= contents_.rowCount || kind > ChangeKind::Restore || (!hasValues && !old.empty()) ||
      (kind == ChangeKind::Update && old.empty())) {
    throw Error(contents_.owner + ": jurnalul are o inregistrare nepermisa");
  }
  CheckOrder(kind, row);
  checked_.assign(old.begin(), old.end());
  store_->payload_.clear();
  std::uint32_t fieldEnd = 0;
  for (OldValue& value : checked_) {
    if (value.field < fieldEnd || value.field >= contents_.columns.size()) {
      throw Error(contents_.owner + ": jurnalul are campuri in alta ordine");
    }
    fieldEnd = value.field + 1U;
    CheckOldValue(value, row);
    AppendOldValue(store_->payload_, value.field, contents_.columns[value.field].type, value.cell);
  }
  contents_.log.MakeRoom(store_->payload_.size());
  contents_.heads.MakeWritable(row);
  isNew_.MakeWritable(row);
  if (kind == ChangeKind::Insert) {
    isNew_.PutBit(row, true);
  }
  // A row may come back from a deletion with other values than it had.
  const bool makesShadow = !old.empty() && !isNew_.BitAt(row) && contents_.ShadowOf(row) == Contents::kNone;
  if (makesShadow) {
    store_->MakeShadowRoom(row);
    store_->MakeShadow(row);
  }
  store_->Record(row, kind, static_cast<std::uint16_t>(checked_.size()), makesShadow ? Log::kMadeShadow : 0);
}

void BlockLoader::RebuildOriginals() {
  const Log& log = contents_.log;
  for (std::uint32_t at = log.Last(); at != Log::kNone; at = log.Before(at)) {
    const std::uint32_t shadow = contents_.ShadowOf(log.HeaderAt(at).row);
    if (shadow == Contents::kNone) {
      continue;
    }
    for (RecordReader old(log, at, *contents_.schemaData); old.Next();) {
      ColumnPlanes& column = contents_.originals[old.Field()];
      column.MakeWritable(shadow, old.Old().isNull);
      column.Store(shadow, old.Old());
    }
  }
}

void BlockLoader::CheckStatesAgainstLog() const {
  for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
    const StoredState state = contents_.StateOf(row);
    const std::uint32_t last = contents_.LastRecordOf(row);
    StoredState expected = StoredState::Unmodified;
    if (last != Log::kNone) {
      const bool isDeleted = contents_.log.HeaderAt(last).kind == ChangeKind::Delete;
      expected = isNew_.BitAt(row) ? (isDeleted ? StoredState::Gone : StoredState::Inserted)
                 : isDeleted       ? StoredState::Deleted
                                   : store_->StateByValues(row);
    }
    if (state != expected && (last != Log::kNone || state != StoredState::Gone)) {
      Refuse(0, row, "starea nu se potriveste cu jurnalul");
    }
  }
}

/// What a roll-back brings back to life has all that a row has.
void BlockLoader::CheckRowsThatMayComeBack() const {
  if (contents_.counts[static_cast<std::size_t>(StoredState::Gone)] == 0) {
    return;
  }
  for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
    if (contents_.StateOf(row) != StoredState::Gone || contents_.LastRecordOf(row) == Log::kNone) {
      continue;
    }
    for (const std::uint16_t field : store_->required_) {
      if (contents_.columns[field].IsNull(row)) {
        Refuse(field, row, "trebuie completat");
      }
    }
  }
}

/// Each ticket is a change, and what it changes is there.
void BlockLoader::CheckTickets() const {
  const Log& log = contents_.log;
  for (std::uint32_t at = log.First(), row = 0; at != Log::kNone; at = log.Next(at), ++row) {
    if (log.HeaderAt(at).row != row || contents_.StateOf(row) == StoredState::Unmodified) {
      Refuse(0, row, "tichetul nu este o modificare");
    }
    for (RecordReader old(log, at, *contents_.schemaData); old.Next();) {
      const FieldDef& field = contents_.schemaData->fields[old.Field()];
      if (Has(field.flags, kRequired) && contents_.columns[old.Field()].IsNull(row)) {
        Refuse(old.Field(), row, "trebuie completat");
      }
    }
  }
  if (log.Count() != contents_.rowCount) {
    throw Error(contents_.owner + ": diferenta nu are cate o inregistrare pentru fiecare tichet");
  }
}

}  // namespace kiv::store
