#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/input/BlockReader.h"

namespace kivtools {

/// What separates the fields of a file that begins with this record: what comes after its first field, ",", ";" or a
/// tab; "," where there is nothing. Example: `SeparatorOf("\"a,b\";c")` is ';'.
char SeparatorOf(std::string_view record) noexcept;

/// Splits whole records of comma-separated values, one after the other. Quoting as in RFC 4180: a field in double
/// quotes may hold separators, line ends and doubled quotes; a quote anywhere else is an error. Lines end with LF or CR
/// LF, the last one may lack it.
class CsvRecords {
 public:
  CsvRecords() = default;
  /// Fields are unquoted in place. `line` is that on which the text begins.
  CsvRecords(std::span<char> text, char separator, std::uint64_t line = 1)
      : text_(text), separator_(separator), nextLine_(line), mayHaveQuotes_(HasQuote(text)) {}

  /// Goes to the next record; false at the end. Throws LineError.
  bool Next();
  /// The fields of the current record, unquoted; an empty line is one empty field. Valid until Next().
  [[nodiscard]] const std::vector<std::string_view>& Fields() const noexcept { return fields_; }
  /// The line on which the current record begins.
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }
  /// The line on which the next one begins.
  [[nodiscard]] std::uint64_t NextLine() const noexcept { return nextLine_; }
  /// How many bytes are behind the current record, which with its line end begins where they began before.
  [[nodiscard]] std::size_t BytesLeft() const noexcept { return text_.size(); }

 private:
  static bool HasQuote(std::span<const char> text) noexcept;
  std::span<char> TakeRecord();
  void Split(std::string_view record);
  void SplitQuoted(std::span<char> record);
  std::string_view TakeQuoted(std::span<char> record, std::size_t& at);
  [[noreturn]] void Fail(const Phrase& what) const;

  std::span<char> text_;  // what is to come
  std::vector<std::string_view> fields_;
  char separator_ = ',';
  std::uint64_t line_ = 0;
  std::uint64_t nextLine_ = 1;
  bool mayHaveQuotes_ = false;  // the whole text
  bool hasQuotes_ = false;      // the record
};

/// Reads records of a whole file in constant memory.
///
///     CsvReader reader(source);          // "nume;pret\r\n\"Masă; rotundă\";5\r\n"
///     reader.Next(); reader.Next();
///     reader.Fields()                    // {"Masă; rotundă", "5"}
class CsvReader {
 public:
  explicit CsvReader(ByteSource source) : reader_(std::move(source), RecordKind::Csv) {}

  /// Goes to the next record; false at the end. Throws LineError.
  bool Next();
  [[nodiscard]] const std::vector<std::string_view>& Fields() const noexcept { return records_.Fields(); }
  /// The line, from 1, on which the current record begins; at the end, the line after the last one.
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }

 private:
  bool NextBlock();

  BlockReader reader_;
  Block block_;
  CsvRecords records_;
  char separator_ = '\0';  // until the first record is seen
  std::uint64_t line_ = 1;
};

}  // namespace kivtools
