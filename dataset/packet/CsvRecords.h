#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "dataset/packet/TextPlace.h"

namespace kiv::packet {

/// Splits comma-separated values into records, in a buffer that only a long record makes larger. Quoting as in RFC
/// 4180: a value in double quotes may hold separators, line ends and doubled quotes; a quote anywhere else is an error.
/// Lines end with LF or CR LF, the last one may lack it.
class CsvRecords {
 public:
  struct Value {
    std::string_view text;
    bool isQuoted;
  };

  CsvRecords(const PacketSource& source, const Text& operation);

  /// Says what stands between values; before the first record. Without it that is what stands behind the first value
  /// of the first record, nothing where it has one value only.
  void SetSeparator(std::optional<char> separator);
  /// Goes to the next record; false at the end.
  bool Next();
  /// The values of the record, unquoted; an empty line is one value without anything. Valid until Next().
  [[nodiscard]] std::span<const Value> Values() const noexcept { return values_; }
  /// Where the record begins.
  [[nodiscard]] const TextPlace& Place() const noexcept { return place_; }
  /// Whether the text began with the mark of UTF-8.
  [[nodiscard]] bool HasMark() const noexcept { return hasMark_; }
  [[noreturn]] void Refuse(std::size_t column, TextView why) const;

 private:
  enum class Found : unsigned char { Record, CutOff };
  void Fill();
  void FindSeparator();
  Found Scan();
  char* ScanQuoted(char* from);
  void Unquote();

  const PacketSource& source_;
  const Text& operation_;
  std::vector<char> buffer_;  // one byte more than is filled, where a line end stops every search
  char* begin_;
  char* end_;
  bool isAtEnd_ = false;
  bool hasMark_ = false;
  std::array<bool, 256> stops_{};
  bool isSeparatorKnown_ = false;
  int separator_ = -1;
  std::vector<Value> values_;
  std::vector<std::size_t> doubled_;  // the values with doubled quotes
  char* recordEnd_;                   // behind its line end
  TextPlace place_{};
  std::uint64_t lines_ = 0;  // of the record
};

}  // namespace kiv::packet
