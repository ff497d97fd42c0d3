#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "dataset/store/Cell.h"
#include "kivtools/dataset/Row.h"
#include "kivtools/dataset/store/Block.h"

namespace kiv::store {

// A record of an Update or a Restore holds the old values; after a Delete the values stay where they are.

/// The changes of the rows in the order in which they happened. A record is found by its position; each knows the one
/// before it of the same row. Records lie in pieces of 64 KiB (the first grows from 1 KiB), which may be shared with a
/// copy of the log: what is there is only overwritten after a roll-back, in a piece of its own.
class Log {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  /// The most bytes of values that one record can hold.
  static constexpr std::size_t kMostPayload = kLargestBlock - 16;

  /// The fixed part of a record; the old values follow.
  struct Header {
    std::uint32_t row;
    std::uint32_t previous;     ///< the position of the row's record before this one, or kNone
    std::uint16_t words;        ///< of eight bytes, this part included
    std::uint16_t wordsBefore;  ///< of the record before this one in the same piece, 0 for the first
    ChangeKind kind;
    std::uint8_t flags;  ///< kMadeShadow or nothing
    std::uint16_t fieldCount;
  };
  static_assert(sizeof(Header) == 16);
  /// The change copied the row's values aside, as its originals.
  static constexpr std::uint8_t kMadeShadow = 1;

  [[nodiscard]] std::uint32_t Count() const noexcept { return count_; }
  /// The position that the next record cannot be before; grows with each record and falls with each taken away.
  [[nodiscard]] std::uint32_t End() const noexcept;
  [[nodiscard]] Header HeaderAt(std::uint32_t position) const noexcept;
  /// The old values of a record: see RecordReader.
  [[nodiscard]] std::byte* PayloadAt(std::uint32_t position) const noexcept {
    return pieces_[position / kWords].block.Data() + std::size_t{position % kWords} * 8 + sizeof(Header);
  }
  /// The first record, the one after a record, kNone where there is none.
  [[nodiscard]] std::uint32_t First() const noexcept { return count_ == 0 ? kNone : 0; }
  [[nodiscard]] std::uint32_t Next(std::uint32_t position) const noexcept;
  /// The last record and the one before a record, kNone where there is none.
  [[nodiscard]] std::uint32_t Last() const noexcept;
  [[nodiscard]] std::uint32_t Before(std::uint32_t position) const noexcept;

  /// Room for a record with that many bytes of values. Throws std::bad_alloc.
  void MakeRoom(std::size_t payload);
  /// Appends a record for which there is room; sets its lengths. Returns its position.
  std::uint32_t Append(Header header, std::span<const std::byte> payload) noexcept;
  /// Takes the last record away.
  void RemoveLast() noexcept;
  /// Takes all away.
  void Clear() noexcept;
  /// Makes all pieces this log's own, for changes of records in place. Throws std::bad_alloc.
  void MakeAllWritable();

 private:
  static constexpr std::uint32_t kWords = kLargestBlock / 8;
  struct Piece {
    Block block;
    std::uint32_t used = 0;  // words
    std::uint32_t last = 0;  // the last record's first word
  };
  std::vector<Piece> pieces_;
  std::uint32_t count_ = 0;
};

/// Walks the old values of a record: for each field its number, top bit set for null, and unless null the bytes of its
/// element as the column holds it.
class RecordReader {
 public:
  RecordReader(const Log& log, std::uint32_t position, const SchemaData& schema) noexcept
      : schema_(schema), at_(log.PayloadAt(position)), left_(log.HeaderAt(position).fieldCount) {}

  /// Goes to the next value; false after the last.
  bool Next() noexcept;
  [[nodiscard]] std::uint16_t Field() const noexcept { return field_; }
  /// The old value, its bytes still a code or number.
  [[nodiscard]] const Cell& Old() const noexcept { return old_; }
  /// Where the code or number of a value that is not null stands.
  [[nodiscard]] std::byte* Place() const noexcept { return place_; }

 private:
  const SchemaData& schema_;
  std::byte* at_;
  std::byte* place_ = nullptr;
  std::uint32_t left_;
  std::uint16_t field_ = 0;
  Cell old_;
};

/// The bytes of one old value, appended to a record that is being put together.
void AppendOldValue(std::vector<std::byte>& payload, std::uint16_t field, FieldType type, const Cell& old);

}  // namespace kiv::store
