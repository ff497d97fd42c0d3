#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/input/BlockReader.h"

namespace kivtools {

/// A record that breaks the quoting rules. The message does not name the file; Line() is where the record begins.
class CsvError : public InputError {
 public:
  CsvError(std::uint64_t line, const std::string& message) : InputError(message), line_(line) {}
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }

 private:
  std::uint64_t line_;
};

/// Reads records of comma-separated values, one after the other in constant memory. Quoting as in RFC 4180: a field in
/// double quotes may hold separators, line ends and doubled quotes; a quote anywhere else is an error. Lines end with
/// LF or CR LF, the last one may lack it; a UTF-8 byte-order mark at the start is passed over. What stands behind the
/// first field of the file, ",", ";" or a tabulator, separates the fields of the whole file.
///
///     CsvReader reader(source);          // "nume;pret\r\n\"Masă; rotundă\";5\r\n"
///     reader.Next(); reader.Next();
///     reader.Fields()                    // {"Masă; rotundă", "5"}
class CsvReader {
 public:
  /// A longer record is taken for a quote that never ends.
  static constexpr std::size_t kLongestRecord = std::size_t{16} * 1024 * 1024;

  explicit CsvReader(ByteSource source) : reader_(std::move(source)) {}

  /// Goes to the next record; false at the end. Throws CsvError.
  bool Next();
  /// The fields of the current record, unquoted; an empty line is one empty field. Valid until Next().
  [[nodiscard]] const std::vector<std::string_view>& Fields() const noexcept { return fields_; }
  /// The line, from 1, on which the current record begins.
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }

 private:
  void Start();
  std::size_t FindRecord();
  void Split(std::string_view record);
  void SplitQuoted(std::span<char> record);
  std::string_view TakeQuoted(std::span<char> record, std::size_t& at);

  BlockReader reader_;
  std::vector<std::string_view> fields_;
  char separator_ = '\0';  // until the first record is seen
  std::uint64_t line_ = 1;
  std::uint64_t recordLines_ = 0;
  std::size_t recordBytes_ = 0;
  bool hasQuotes_ = false;
};

}  // namespace kivtools
