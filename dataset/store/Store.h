#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "dataset/store/Contents.h"
#include "dataset/store/HashIndex.h"
#include "dataset/store/KeyIndex.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv::store {

/// A dataset that can be edited: its contents, and what finds texts and keys in them.
///
/// An edit goes in three steps: everything is checked; everything is made room for and made writable; everything is
/// written. The first two may fail and leave at most texts behind that nobody uses; the third cannot fail.
class Store {
 public:
  Store(TextView name, const Schema& schema);
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  [[nodiscard]] const Contents& GetContents() const noexcept { return contents_; }

  std::uint32_t Insert(std::span<const FieldValue> values);
  void Update(std::uint32_t row, std::span<const FieldValue> values);
  void Delete(std::uint32_t row);
  [[nodiscard]] std::uint32_t Find(std::span<const ValueView> key);

 private:
  friend class RowLoader;
  friend class BlockLoader;
  /// A field and the value that it is about to get.
  struct Change {
    std::uint16_t field;
    Cell cell;
  };
  /// A row's place in the key index.
  struct KeyPlace {
    std::uint32_t tag = 0;
    std::span<const Cell> key;
  };

  // Checks.
  void BeginEdit();
  std::uint32_t RequireRow(std::uint32_t row) const;
  void ProposeDefaults();
  std::int64_t NumberAutoIncs();
  void CheckRequired() const;
  KeyPlace PlaceOfKey(std::uint32_t row);
  void RefuseKeyOfAnother(const KeyPlace& place, std::uint32_t row) const;
  void CollectChanges(std::uint32_t row, std::span<const FieldValue> values);
  [[nodiscard]] bool ChangesKey() const noexcept;

  // Room.
  void Intern(std::size_t field, Cell& cell);
  std::uint32_t InternText(std::size_t field, std::string_view bytes);
  [[nodiscard]] std::uint32_t TextTag(std::string_view bytes) const noexcept;
  std::uint32_t FindOrAddEntry(std::size_t field, std::string_view bytes);
  void DropDictionary(std::size_t field);
  void MakeRowWritable(std::uint32_t row);
  void MakeRoomForInsert(std::uint32_t row, const KeyPlace& place);
  void MakeRoomForUpdate(std::uint32_t row);
  void MakeShadowRoom(std::uint32_t row);

  // Writing.
  void SetState(std::uint32_t row, StoredState state) noexcept;
  void MakeShadow(std::uint32_t row) noexcept;
  void NoteTemporary(const Cell& given) noexcept;
  void Record(std::uint32_t row, ChangeKind kind, std::uint16_t fieldCount, std::uint8_t flags = 0) noexcept;
  [[nodiscard]] StoredState StateByValues(std::uint32_t row) const noexcept;

  Contents contents_;
  KeyIndex keys_;
  std::vector<HashIndex> dictionaries_;  // one a field, unused where the field has no texts
  std::uint64_t textSeed_;
  /// Rows before this one have writable elements in every column, unless a snapshot has been taken since.
  std::uint32_t appendEnd_ = 0;
  /// Rows beyond the last that a loader has put down and not yet handed over.
  std::uint32_t pendingRows_ = 0;
  bool isLoading_ = false;
  std::vector<Cell> defaults_;
  std::vector<std::uint16_t> required_;
  std::vector<std::uint16_t> autoIncs_;

  // Reused from post to post, so that one allocates nothing for them.
  std::vector<Cell> proposed_;
  std::vector<Cell> key_;
  std::vector<Cell> keyBefore_;
  std::vector<Change> changes_;
  std::vector<std::byte> payload_;
};

}  // namespace kiv::store
