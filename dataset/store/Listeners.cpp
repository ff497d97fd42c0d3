#include <algorithm>

#include "core/Numbers.h"
#include "dataset/store/Store.h"

namespace kiv::store {
namespace {

/// Says as long as it lives that listeners are being called.
class Calling {
 public:
  explicit Calling(bool& isCalling) noexcept : isCalling_(isCalling), before_(isCalling) { isCalling_ = true; }
  ~Calling() { isCalling_ = before_; }
  Calling(const Calling&) = delete;
  Calling& operator=(const Calling&) = delete;

 private:
  bool& isCalling_;
  bool before_;
};

}  // namespace

void Store::AskListeners(ChangeKind kind, std::uint32_t row) {
  const Calling calling(isAsking_);
  const Proposal proposal(*this, kind, static_cast<RowId>(row));
  // By place: a listener may add or remove listeners. NOLINTNEXTLINE(modernize-loop-convert)
  for (std::size_t i = 0; i < listeners_.size(); ++i) {
    if (listeners_[i] != nullptr) {
      listeners_[i]->BeforePost(proposal);
    }
  }
}

void Store::Tell(const ChangeNotice& notice) noexcept {
  if (updateDepth_ > 0) {
    hasUntoldChanges_ = true;
    return;
  }
  {
    const Calling calling(isAsking_);
    // NOLINTNEXTLINE(modernize-loop-convert)
    for (std::size_t i = 0; i < listeners_.size(); ++i) {
      if (listeners_[i] != nullptr) {
        listeners_[i]->Changed(notice);
      }
    }
  }
  std::erase(listeners_, nullptr);
}

void Store::TellOf(ChangeKind kind, std::uint32_t row) noexcept {
  Tell({kind, static_cast<RowId>(row), ChangedFields()});
}

std::span<const std::uint16_t> Store::ChangedFields() noexcept {
  changedFields_.clear();
  for (const Change& change : changes_) {
    changedFields_.push_back(change.field);
  }
  return changedFields_;
}

void Store::ForEachChange(const std::function<void(const ChangeRecord&)>& callback) {
  const Calling calling(isAsking_);
  for (std::uint32_t at = contents_.log.First(); at != Log::kNone; at = contents_.log.Next(at)) {
    const Log::Header header = contents_.log.HeaderAt(at);
    ChangeRecord record{header.kind, static_cast<RowId>(header.row), {}};
    for (RecordReader old(contents_.log, at, *contents_.schemaData); old.Next();) {
      const std::size_t field = old.Field();
      record.fields.push_back({field, ValueOf(contents_.columns[field].type, contents_.Resolve(field, old.Old()))});
    }
    callback(record);
  }
}

void Store::RemoveListener(DatasetListener& listener) noexcept {
  std::ranges::replace(listeners_, &listener, nullptr);
  if (!isAsking_) {
    std::erase(listeners_, nullptr);
  }
}

void Store::EndUpdate() noexcept {
  if (updateDepth_ > 0 && --updateDepth_ == 0 && hasUntoldChanges_) {
    hasUntoldChanges_ = false;
    TellOfAll();
  }
}

bool Store::IsProposed(ChangeKind kind, std::size_t field) const noexcept {
  return kind == ChangeKind::Insert
             ? !proposed_[field].isNull
             : std::ranges::any_of(changes_, [field](const Change& change) { return change.field == field; });
}

Cell Store::Proposed(ChangeKind kind, std::uint32_t row, std::size_t field) const noexcept {
  if (kind == ChangeKind::Insert) {
    return proposed_[field];
  }
  const auto change = std::ranges::find(changes_, field, &Change::field);
  return change == changes_.end() ? contents_.Read(row, field) : change->cell;
}

}  // namespace kiv::store

namespace kiv {

DatasetListener::~DatasetListener() = default;

namespace {

void CheckField(const store::Contents& contents, std::size_t field) {
  if (field >= contents.columns.size()) {
    Text message = contents.owner + ": campul ";
    AppendDecimal(message, field);
    throw ListIndexError(message + " nu exista");
  }
}

}  // namespace

bool Proposal::IsChanged(std::size_t field) const {
  CheckField(store_.GetContents(), field);
  return store_.IsProposed(kind_, field);
}

ValueView Proposal::Get(std::size_t field) const {
  CheckField(store_.GetContents(), field);
  return store::ViewOf(store_.GetContents().columns[field].type,
                       store_.Proposed(kind_, static_cast<std::uint32_t>(row_), field));
}

}  // namespace kiv
