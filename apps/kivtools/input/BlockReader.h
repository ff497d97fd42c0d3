#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "apps/kivtools/InputError.h"

namespace kivtools {

/// Where bytes come from: stores at most `capacity` bytes and returns how many, 0 at the end.
using ByteSource = std::function<std::size_t(char* into, std::size_t capacity)>;

/// A fault of the input on a line, counted from 1. The message names neither the line nor the file.
class LineError : public InputError {
 public:
  LineError(std::uint64_t line, const Said& message) : InputError(message), line_(line) {}
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }

 private:
  std::uint64_t line_;
};

/// What a record of the input is: a line, or a record of separated values, whose quoted fields may hold line ends.
enum class RecordKind : std::uint8_t { Line, Csv };

/// Whole records in memory that may be changed in place.
class Block {
 public:
  [[nodiscard]] std::span<char> Text() noexcept { return {bytes_.get(), size_}; }

 private:
  friend class BlockReader;
  void Reserve(std::size_t capacity);

  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
};

/// Reads a source as blocks of whole records: all reading of input goes through it. Memory does not grow with the
/// input: a record of more than 16 MiB is refused. A UTF-8 byte order mark at the start is dropped unless it is asked
/// for.
///
///     BlockReader reader(source, RecordKind::Line);      // "ab\ncd\ne" in one piece
///     reader.Next(block);   block.Text()                 // "ab\ncd\n"
///     reader.Next(block);   block.Text()                 // "e", the end
class BlockReader {
 public:
  enum class ByteOrderMark : std::uint8_t { Drop, Keep };
  BlockReader(ByteSource source, RecordKind kind, ByteOrderMark mark = ByteOrderMark::Drop);

  /// Reads the next records, as many as came in at once; false at the end. Throws RecordTooLong and what the source
  /// throws; records before that have been given already.
  bool Next(Block& block);
  /// The first record that Next() would give, with its line end; empty at the end. Valid until Next() or DropFirst().
  /// Throws LineError for one that is too long, and what the source throws.
  [[nodiscard]] std::string_view PeekFirst();
  /// Takes that record away.
  void DropFirst();
  /// The line, from 1, on which what PeekFirst() gives begins; meaningful before the first Next().
  [[nodiscard]] std::uint64_t FirstLine() const noexcept { return firstLine_; }
  /// Whether the input began with a mark that was dropped; meaningful from PeekFirst() or Next() on.
  [[nodiscard]] bool HadByteOrderMark() const noexcept { return hadMark_; }
  /// Whether what came in last was a small piece, as from a person who types.
  [[nodiscard]] bool IsSlow() const noexcept { return slow_; }

  /// A record is longer than can be kept.
  class RecordTooLong : public InputError {
   public:
    explicit RecordTooLong(RecordKind kind);
  };

 private:
  bool ReadMore();
  void DropByteOrderMark();
  [[nodiscard]] std::size_t FirstEnd() const noexcept;
  std::size_t LastEnd() noexcept;
  void CheckLength(std::size_t end) const;
  void DropFront(std::size_t count) noexcept;

  ByteSource source_;
  RecordKind kind_;
  bool startsWithMark_;
  bool hadMark_ = false;
  Block pending_;            // what is read and not given
  std::size_t scanned_ = 0;  // so much of it is known to hold no record's end
  bool inQuotes_ = false;    // at that place
  bool slow_ = false;
  std::uint64_t firstLine_ = 1;
};

}  // namespace kivtools
