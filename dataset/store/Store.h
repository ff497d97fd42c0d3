#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "dataset/store/Contents.h"
#include "dataset/store/EditRecorder.h"
#include "dataset/store/Followers.h"
#include "dataset/store/HashIndex.h"
#include "dataset/store/KeyIndex.h"
#include "dataset/store/NewRows.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv::store {

/// A dataset that can be edited: its contents, and what finds texts and keys in them.
///
/// An edit goes in three steps: everything is checked; everything is made room for and made writable; everything is
/// written. The first two may fail and leave at most texts behind that nobody uses; the third cannot fail.
class Store {
 public:
  Store(TextView name, const Schema& schema);
  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  [[nodiscard]] const Contents& GetContents() const noexcept { return contents_; }

  std::uint32_t Insert(std::span<const FieldValue> values);
  void Update(std::uint32_t row, std::span<const FieldValue> values);
  void Delete(std::uint32_t row);
  [[nodiscard]] std::uint32_t Find(std::span<const ValueView> key);
  /// Looks a key up the short way, which there is for one integer while all keys fit in 32 bits; false elsewhere.
  [[nodiscard]] bool FindNumber(std::int64_t key, std::uint32_t& row) const noexcept {
    return keys_.FindNumber(key, row);
  }

  // The history: see ChangeLog.
  Mark SetMark();
  void RollbackTo(Mark mark);
  bool UndoLast();
  void RevertRow(std::uint32_t row);
  void CancelChanges();
  void AcceptChanges();
  void Compact();
  /// Takes back all changes but that many.
  void UndoTo(std::uint32_t records);
  /// Who is told of each edit before it is written, null for nobody. Throws Error where somebody is already.
  void SetRecorder(EditRecorder* recorder);
  [[nodiscard]] bool HasRecorder() const noexcept { return recorder_ != nullptr; }
  /// A copy that shares everything and stays as it is.
  [[nodiscard]] std::shared_ptr<const Contents> CopyContents();

  /// The row with a key of one field, whose kind of value the cell holds; Contents::kNone for a null and where there is
  /// none. Throws std::bad_alloc.
  [[nodiscard]] std::uint32_t FindCell(const Cell& key) {
    keys_.Repair();
    return key.isNull ? HashIndex::kNone : keys_.Find(keys_.TagOf({&key, 1}), {&key, 1});
  }
  /// The calculated columns from now on.
  void SetCalculated(std::shared_ptr<const query::CalculatedColumns> columns) noexcept {
    contents_.calculated = std::move(columns);
  }

  /// Those that go with its rows.
  [[nodiscard]] std::shared_ptr<Followers> GetFollowers();

  void AddListener(DatasetListener& listener) { listeners_.push_back(&listener); }
  void RemoveListener(DatasetListener& listener) noexcept;
  void BeginUpdate() noexcept { ++updateDepth_; }
  void EndUpdate() noexcept;
  /// Calls back for each record of the log, oldest first; what the callback edits is refused.
  void ForEachChange(const std::function<void(const ChangeRecord&)>& callback);
  /// The value that a field is about to get, for a Proposal.
  [[nodiscard]] bool IsProposed(ChangeKind kind, std::size_t field) const noexcept;
  [[nodiscard]] Cell Proposed(ChangeKind kind, std::uint32_t row, std::size_t field) const noexcept;

 private:
  friend class RowLoader;
  friend class BlockLoader;
  using Change = FieldCell;
  /// A row's place in the key index.
  struct KeyPlace {
    std::uint32_t tag = 0;
    std::span<const Cell> key;
  };

  // Checks.
  void CheckMayEdit() const;
  void BeginEdit();
  [[nodiscard]] std::uint32_t RequireRow(std::uint32_t row) const;
  void Propose(std::span<const FieldValue> values);
  std::int64_t NumberAutoIncs();
  void CheckRequired() const;
  std::span<const Cell> ProposedKey();
  KeyPlace PlaceOfKey(std::uint32_t row);
  void RefuseKeyOfAnother(const KeyPlace& place, std::uint32_t row) const;
  void CollectChanges(std::uint32_t row, std::span<const FieldValue> values);
  [[nodiscard]] bool ChangesKey() const noexcept;
  void CollectOriginals(std::uint32_t row);

  // Room.
  void Intern(std::size_t field, Cell& cell) {
    if (!cell.isNull && TraitsOf(contents_.columns[field].type).storage != Storage::Fixed) {
      InternBytes(field, cell);
    }
  }
  void InternBytes(std::size_t field, Cell& cell);
  std::uint32_t InternText(std::size_t field, std::string_view bytes);
  [[nodiscard]] std::uint32_t TextTag(std::string_view bytes) const noexcept;
  std::uint32_t FindOrAddEntry(std::size_t field, std::string_view bytes);
  void DropDictionary(std::size_t field);
  /// Writes a value of a new row, its bytes interned.
  void PutNew(std::size_t field, std::uint32_t row, const Cell& cell) {
    newRows_.Put(field, row, cell);
    Plane& nulls = contents_.columns[field].nulls;
    if (cell.isNull || nulls.Has(row)) {
      nulls.MakeWritable(row);
      nulls.PutBit(row, cell.isNull);
    }
  }
  void PutProposed(std::uint32_t row);
  void MakeRoomForInsert(std::uint32_t row, const KeyPlace& place);
  void MakeRoomForUpdate(std::uint32_t row);
  void MakeRoomForUndo(std::uint32_t records);
  void MakeShadowRoom(std::uint32_t row);

  // Followers.
  void PrepareFollowers(std::uint32_t changes) {
    if (followers_ != nullptr) {
      followers_->Prepare(changes);
    }
  }
  template <class Tell>
  void TellFollowers(Tell&& tell) noexcept {
    if (followers_ != nullptr) {
      followers_->ForEach(tell);
    }
  }
  void TellBefore(const RowChange& change) noexcept {
    TellFollowers([&change](Follower& follower) { follower.Before(change); });
  }
  void TellAfter(const RowChange& change) noexcept {
    if (followers_ != nullptr) {
      followers_->Count(change);
    }
    TellFollowers([&change](Follower& follower) { follower.After(change); });
  }
  void TellDone() noexcept {
    TellFollowers([](Follower& follower) { follower.Done(); });
  }
  std::span<const std::uint16_t> ChangedFields() noexcept;
  std::span<const std::uint16_t> ChangedFields(std::uint32_t record) noexcept;

  // Writing, once the recorder has nothing against it.
  void Announce(const Edit& edit) {
    if (recorder_ != nullptr) {
      recorder_->Record(edit);
    }
  }
  void AnnounceInsert(std::uint32_t row);
  void SetState(std::uint32_t row, StoredState state) noexcept;
  void MakeShadow(std::uint32_t row) noexcept;
  /// Stands in the place of the next temporary number when there is none left.
  static constexpr std::int64_t kNoTemporary = std::numeric_limits<std::int64_t>::min();
  /// What the next temporary number may be at most once the cell's is in use.
  static std::int64_t BelowOf(const Cell& given) noexcept;
  void NoteTemporary(const Cell& given) noexcept;
  void Record(std::uint32_t row, ChangeKind kind, std::uint16_t fieldCount, std::uint8_t flags = 0) noexcept;
  [[nodiscard]] StoredState StateByValues(std::uint32_t row) const noexcept;
  void DeletePresent(std::uint32_t row);
  void PostChanges(std::uint32_t row, ChangeKind kind);
  void PutOldValues(std::uint32_t record) noexcept;
  void Undo() noexcept;
  void TakeBack(std::uint32_t record, const RowChange& change) noexcept;
  void UndoDownTo(std::uint32_t records);
  void ForgetHistory() noexcept;

  // Listeners.
  void AskListeners(ChangeKind kind, std::uint32_t row);
  void Tell(const ChangeNotice& notice) noexcept;
  void TellOfAll() noexcept { Tell({}); }
  void TellOf(ChangeKind kind, std::uint32_t row) noexcept;

  // Compaction.
  class Compactor;

  Contents contents_;
  KeyIndex keys_;
  /// Not side by side: those of many fields would be one large allocation.
  std::deque<HashIndex> dictionaries_;  // one a field, unused where the field has no texts
  std::uint64_t textSeed_;
  NewRows newRows_;
  /// Rows before this one have writable states and heads, unless a snapshot has been taken since.
  std::uint32_t appendEnd_ = 0;
  /// Rows beyond the last that a loader has put down and not yet handed over.
  std::uint32_t pendingRows_ = 0;
  bool isLoading_ = false;
  std::vector<Cell> defaults_;
  std::vector<std::uint16_t> required_;
  std::vector<std::uint16_t> autoIncs_;

  /// A point of the history: how many records there were.
  struct MarkedPoint {
    std::uint32_t serial;
    std::uint32_t records;
  };
  std::vector<MarkedPoint> marks_;
  std::uint32_t lastMark_ = 0;

  std::shared_ptr<Followers> followers_;  // null until one is asked for
  EditRecorder* recorder_ = nullptr;
  std::vector<DatasetListener*> listeners_;
  std::vector<std::uint16_t> changedFields_;
  std::uint32_t updateDepth_ = 0;
  bool hasUntoldChanges_ = false;
  bool isAsking_ = false;

  // Reused from post to post, so that one allocates nothing for them.
  std::vector<Cell> proposed_;
  std::vector<Cell> key_;
  std::vector<Cell> keyBefore_;
  std::vector<Change> changes_;
  std::vector<std::byte> payload_;
};

}  // namespace kiv::store
