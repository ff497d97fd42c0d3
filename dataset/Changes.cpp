#include "kivtools/dataset/Changes.h"

#include "core/Numbers.h"
#include "dataset/store/Random.h"
#include "dataset/store/Store.h"

namespace kiv {

using store::Cell;
using store::Contents;
using store::Log;
using store::StoredState;

std::size_t ChangeLog::Count() const noexcept {
  return store_->GetContents().log.Count();
}

void ChangeLog::ForEach(const std::function<void(const ChangeRecord&)>& callback) const {
  store_->ForEachChange(callback);
}

Mark ChangeLog::SetMark() {
  return store_->SetMark();
}
void ChangeLog::RollbackTo(Mark mark) {
  store_->RollbackTo(mark);
}
bool ChangeLog::UndoLast() {
  return store_->UndoLast();
}
void ChangeLog::RevertRow(RowId row) {
  store_->RevertRow(static_cast<std::uint32_t>(row));
}
void ChangeLog::CancelChanges() {
  store_->CancelChanges();
}
void ChangeLog::AcceptChanges() {
  store_->AcceptChanges();
}
Delta ChangeLog::MakeDelta() const {
  return {store_->CopyContents(), store::RandomGuid()};
}

Delta::Delta(std::shared_ptr<const Contents> contents, const Guid& id) : contents_(std::move(contents)), id_(id) {
  for (std::uint32_t block = 0; block < contents_->BlockCount(); ++block) {
    // A block without states holds no change.
    if (contents_->states.BlockBytes(block).empty()) {
      continue;
    }
    const std::uint32_t first = block * store::kBlockRows;
    for (std::uint32_t row = first; row < first + contents_->RowsIn(block); ++row) {
      const StoredState state = contents_->StateOf(row);
      if (state != StoredState::Unmodified && state != StoredState::Gone) {
        rows_.MakeWritable(count_);
        rows_.Put(count_++, row);
      }
    }
  }
}

const Guid& Delta::Id() const noexcept {
  return id_;
}
TextView Delta::Name() const noexcept {
  return contents_->name;
}
const Schema& Delta::GetSchema() const noexcept {
  return contents_->schema;
}
std::uint32_t Delta::Count() const noexcept {
  return count_;
}

std::uint32_t Delta::Check(std::uint32_t ticket, std::size_t field) const {
  if (ticket >= count_ || field >= contents_->columns.size()) {
    Text message = contents_->owner + ": diferenta nu are ";
    message += ticket >= count_ ? "tichetul " : "campul ";
    AppendDecimal(message, ticket >= count_ ? std::size_t{ticket} : field);
    throw ListIndexError(message);
  }
  return rows_.At<std::uint32_t>(ticket);
}

ChangeKind Delta::Kind(std::uint32_t ticket) const {
  const StoredState state = contents_->StateOf(Check(ticket, 0));
  return state == StoredState::Inserted  ? ChangeKind::Insert
         : state == StoredState::Deleted ? ChangeKind::Delete
                                         : ChangeKind::Update;
}

RowId Delta::Row(std::uint32_t ticket) const {
  return static_cast<RowId>(Check(ticket, 0));
}

bool Delta::IsChanged(std::uint32_t ticket, std::size_t field) const {
  const std::uint32_t row = Check(ticket, field);
  switch (contents_->StateOf(row)) {
    case StoredState::Inserted:
      return !contents_->columns[field].IsNull(row);
    case StoredState::Modified:
      return !store::AreEqual(contents_->columns[field].type, contents_->Read(row, field),
                              contents_->ReadOriginal(row, field));
    default:
      return false;
  }
}

bool Delta::HasOriginal(std::uint32_t ticket, std::size_t field) const {
  const std::uint32_t row = Check(ticket, field);
  const FieldDef& definition = contents_->schemaData->fields[field];
  return contents_->StateOf(row) != StoredState::Inserted &&
         (Has(definition.flags, kKey) || definition.IsChecked() || IsChanged(ticket, field));
}

Value Delta::Original(std::uint32_t ticket, std::size_t field) const {
  if (!HasOriginal(ticket, field)) {
    throw Error(contents_->owner + ": campul " + store::Quoted(contents_->schemaData->fields[field].name) +
                " nu are valoare initiala in diferenta");
  }
  return store::ValueOf(contents_->columns[field].type,
                        contents_->ReadOriginal(rows_.At<std::uint32_t>(ticket), field));
}

Value Delta::Current(std::uint32_t ticket, std::size_t field) const {
  const std::uint32_t row = Check(ticket, field);
  if (contents_->StateOf(row) == StoredState::Deleted) {
    throw Error(contents_->owner + ": un rand sters nu are valori noi");
  }
  return store::ValueOf(contents_->columns[field].type, contents_->Read(row, field));
}

}  // namespace kiv
