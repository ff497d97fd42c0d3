#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "dataset/store/Contents.h"
#include "dataset/store/Hash.h"
#include "dataset/store/HashIndex.h"

namespace kiv::store {

/// Finds rows by their key.
///
/// The tag of a key that is one number of at most 32 bits is that number, mixed one to one: equal tags are equal keys
/// and the column need not be read. That holds until a key needs more bits.
class KeyIndex {
 public:
  explicit KeyIndex(const Contents& contents) noexcept;

  [[nodiscard]] bool Exists() const noexcept { return !fields_.empty(); }
  /// The fields of the key.
  [[nodiscard]] std::span<const std::uint16_t> Fields() const noexcept { return fields_; }
  /// Whether the field alone is the key.
  [[nodiscard]] bool IsLoneField(std::size_t field) const noexcept {
    return fields_.size() == 1 && fields_[0] == field;
  }
  /// The tag of the key in those cells, one for each field of the key.
  [[nodiscard]] std::uint32_t TagOf(std::span<const Cell> key) const noexcept;
  /// The row with that key, HashIndex::kNone if there is none.
  [[nodiscard]] std::uint32_t Find(std::uint32_t tag, std::span<const Cell> key) const noexcept;
  /// The row with a key of one integer, where all keys fit in 32 bits; false where that is not so.
  [[nodiscard]] bool FindNumber(std::int64_t key, std::uint32_t& row) const noexcept {
    if (!isExact_ || isBroken_ || !isInteger_ || key != static_cast<std::int32_t>(key)) {
      return false;
    }
    row = index_.Find(Mix32(static_cast<std::uint32_t>(key) ^ seed_), [](std::uint32_t) { return true; });
    return true;
  }
  /// Brings the place of a tag near that is soon asked for.
  void Prefetch(std::uint32_t tag) const noexcept { index_.Prefetch(tag); }
  /// Room for one more row with that tag. Throws std::bad_alloc.
  void Reserve(std::uint32_t tag) { index_.Reserve(tag); }
  /// Adds a row. Where no room was made and there is none the index breaks: it does no more until Repair().
  void Insert(std::uint32_t tag, std::span<const Cell> key, std::uint32_t row) noexcept;
  void Erase(std::uint32_t tag, std::uint32_t row) noexcept {
    if (!isBroken_) {
      index_.Erase(tag, row);
    }
  }
  /// Sees to it that the index holds what the columns do. Throws std::bad_alloc.
  void Repair() {
    if (isBroken_) {
      Build(contents_.rowCount);
    }
  }
  /// Forgets what it holds until Repair().
  void Break() noexcept { isBroken_ = true; }
  /// Makes the index anew from the first `rows` rows, or from nothing. Throws std::bad_alloc, and Error naming the key
  /// where two rows have the same; nothing has changed then.
  void Build(std::uint32_t rows);
  /// The first row that has the key of one before it, where Build() has thrown for that.
  [[nodiscard]] std::optional<std::uint32_t> RowWithTakenKey() const noexcept { return rowWithTakenKey_; }
  /// Takes the entries of another index, whose rows and keys are now those of this one's contents.
  void TakeOver(KeyIndex& other) noexcept {
    index_ = std::move(other.index_);
    seed_ = other.seed_;
    isExact_ = other.isExact_;
    isBroken_ = other.isBroken_;
  }
  /// The error that a key exists already.
  [[noreturn]] void RefuseTwice(std::span<const Cell> key) const;

 private:
  [[nodiscard]] bool HasKey(std::uint32_t row, std::span<const Cell> key) const noexcept;
  std::span<const Cell> ReadKey(std::uint32_t row, std::vector<Cell>& key) const;
  [[nodiscard]] std::uint32_t TagOfNumber(const Cell& cell) const noexcept;
  struct Entry {
    std::uint32_t tag;
    std::uint32_t row;
  };
  /// Adds the first `rows` rows; false where two have the same key. `key` is for the keys that are read.
  bool AddBySegment(std::uint32_t rows, std::vector<Cell>& key);
  /// The first row that has the key of one before it, and that key.
  std::optional<std::uint32_t> FindFirstTwice(std::uint32_t rows, std::vector<Cell>& key);
  void ReadEntries(std::uint32_t first, std::uint32_t end, std::vector<Entry>& entries, std::vector<Cell>& key);
  static void SortBySegment(std::span<const Entry> entries, std::span<Entry> sorted) noexcept;
  bool TryAdd(const Entry& entry, std::vector<Cell>& key);

  const Contents& contents_;
  std::span<const std::uint16_t> fields_;
  HashIndex index_;
  std::uint32_t seed_;
  bool isNumber_;
  bool isInteger_;
  bool isExact_;
  bool isBroken_ = false;
  std::optional<std::uint32_t> rowWithTakenKey_;
};

}  // namespace kiv::store
