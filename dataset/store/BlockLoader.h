#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "dataset/store/Store.h"

namespace kiv::store {

/// Builds a dataset from what a file holds, block by block, and checks all of it: nothing that a post would refuse gets
/// in, and no code, number, row or link can lead astray. What is wrong is an Error that names field and row; the loader
/// is of no use then. Counts are the reader's to check: what it asks for is allocated.
///
///     BlockLoader loader("linii", schema);
///     loader.AddEntry(city, "Iasi");                   // dictionary texts and large values, before their rows
///     loader.BeginBlock(rows);                         // 8,192 rows; fewer in the last block only
///     std::memcpy(loader.Values(suma).data(), ...);    // elements as Contents.h describes them, into their place
///     loader.PutText(nume, 17, "Popescu");             // or text by text
///     loader.EndBlock();
///     loader.AddRecord(ChangeKind::Update, 5, old);    // the change log, oldest first
///     Dataset dataset(loader.Finish());
class BlockLoader {
 public:
  /// What the rows are: those of a dataset, or the tickets of a delta, which hold only what a receiver needs.
  enum class Purpose : std::uint8_t { Dataset, Delta };

  BlockLoader(TextView name, const Schema& schema, Purpose purpose = Purpose::Dataset);

  /// Says that a Text or WideText field has no dictionary; before its first text. Texts then go in by PutText.
  void UseHeap(std::size_t field);
  /// Adds an entry to a field's dictionary; returns its code, which counts from 0. Throws Error for a text that the
  /// field cannot hold and for one that is there already.
  std::uint32_t AddEntry(std::size_t field, std::string_view bytes);
  /// Adds the value of a Memo or Blob; returns its number, which counts from 0 over all fields.
  std::uint32_t AddLarge(std::string_view bytes);

  /// Begins the next block.
  void BeginBlock(std::uint32_t rows);
  /// The elements of a field in this block, for the reader to fill; they hold nothing yet.
  std::span<std::byte> Values(std::size_t field);
  /// Of a Guid the second halves.
  std::span<std::byte> SecondValues(std::size_t field);
  /// The null bits of a field in this block, all zero; asked for only where there is a null. Bits past the rows stay
  /// zero.
  std::span<std::byte> Nulls(std::size_t field);
  /// The states in this block, all Unmodified; asked for only where there is another.
  std::span<std::byte> States();
  /// Sets a text, for which nothing may have been put into Values().
  void PutText(std::size_t field, std::uint32_t rowInBlock, std::string_view bytes);
  /// Sets the texts of the rows from `first` to before `end` that are not null, from bytes that hold them one after
  /// another, each behind its length in 16 bits. It stops before a text that cannot be taken so: PutText says why or
  /// takes it. Returns the row after the last one that was set, and how many texts and bytes that were.
  struct Put {
    std::uint32_t end;
    Texts::Taken taken;
  };
  Put PutStoredTexts(std::size_t field, std::uint32_t first, std::uint32_t end, std::span<const std::byte> stored);
  /// Checks the block; its rows are part of the dataset now.
  void EndBlock();

  /// The other way, row by row, for readers that do not know how many there will be: no block may be there yet, or be
  /// begun later. Fixed cells hold what their type can hold; texts and large values are put where they belong.
  void AddRow(std::span<Cell> cells, StoredState state = StoredState::Unmodified);
  /// The same value by value, for readers that have checked them and the nulls too. Each field gets a value or a null
  /// between BeginRow() and EndRow(); fixed values of a row that is not ended are overwritten by the next one.
  void BeginRow() {
    if (contents_.rowCount >= rowsEnd_) {
      ReachRow();
    }
  }
  /// Puts a value of fixed width.
  void PutFixed(std::size_t field, const Cell& cell) noexcept { store_->newRows_.Put(field, contents_.rowCount, cell); }
  /// The same where the type has elements of at most eight bytes.
  void PutFixed(std::size_t field, std::uint64_t bits) noexcept {
    store_->newRows_.PutBits(field, contents_.rowCount, bits);
  }
  void PutBytes(std::size_t field, std::string_view bytes);
  void PutNull(std::size_t field);
  void EndRow(StoredState state = StoredState::Unmodified) noexcept {
    ++contents_.counts[static_cast<std::size_t>(state)];
    ++contents_.rowCount;
  }
  /// Keeps a value of an AutoInc field from being given to a new row.
  void NoteAutoInc(const Cell& cell) noexcept { store_->NoteTemporary(cell); }
  /// Puts the bytes of an old value where AddRow puts those of a new one, so that AddRecord takes it.
  void PutOldBytes(std::size_t field, Cell& cell);

  /// A value before a change: a code of the dictionary, a number of a large value, or for a field without dictionary
  /// its bytes.
  struct OldValue {
    std::uint16_t field;
    Cell cell;
  };
  /// Adds a change record, oldest first. Links and originals come of themselves.
  void AddRecord(ChangeKind kind, std::uint32_t row, std::span<const OldValue> old);

  /// Keeps numbers that were given to rows which are no more from being given again. Throws Error for one that cannot
  /// be the next.
  void SetNextTemporary(std::int64_t next);

  /// Checks states and keys against the log, builds the key index and hands the dataset over.
  std::unique_ptr<Store> Finish();
  /// The first row that has the key of one before it, where Finish() has thrown for that.
  [[nodiscard]] std::optional<std::uint32_t> RowWithTakenKey() const noexcept {
    return store_->keys_.RowWithTakenKey();
  }

 private:
  void ReachRow();
  [[noreturn]] void Refuse(std::size_t field, std::uint32_t row, TextView why) const;
  void CheckColumn(std::size_t field, std::uint32_t first, std::uint32_t rows);
  void ClearNulls(std::size_t field, std::uint32_t first, std::uint32_t rows);
  bool IsAllowed(std::size_t field, std::uint32_t first, std::uint32_t rows);
  void CheckStates(std::uint32_t first, std::uint32_t rows);
  void CheckOldValue(OldValue& old, std::uint32_t row);
  void CheckOrder(ChangeKind kind, std::uint32_t row) const;
  void RebuildOriginals();
  void CheckStatesAgainstLog() const;
  void CheckRowsThatMayComeBack() const;
  void CheckTickets() const;
  [[nodiscard]] bool MayBeNull(const FieldDef& field, std::uint32_t row) const noexcept;
  void CheckNumber(std::size_t field, const Cell& cell, std::uint32_t row) const;

  std::unique_ptr<Store> store_;
  Contents& contents_;
  Purpose purpose_;
  std::uint32_t blockRows_ = 0;
  std::uint32_t rowsEnd_ = 0;                             // of the rows that have been reached
  std::vector<bool> isPut_;                               // by field: texts were put one by one
  Plane isNew_{Plane::Width::Bit, Plane::Filled::Zeros};  // the row's first record is its insertion
  std::vector<OldValue> checked_;
  std::vector<std::uint32_t> places_;
};

}  // namespace kiv::store
