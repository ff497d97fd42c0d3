#pragma once

#include <cstdint>
#include <string_view>

#include "dataset/arrow/ColumnFormat.h"
#include "dataset/store/Cell.h"
#include "kivtools/dataset/ArrowData.h"

namespace kiv::arrow {

/// The array of one column, of which nothing is believed that can be checked.
class ColumnView {
 public:
  /// Checks that the array is one of that format and covers `rows` elements from `first` on; `why` says what is wrong
  /// where it is not. The bytes of texts are not looked at.
  static bool Make(const ArrowArray& array, const ColumnFormat& format, std::int64_t first, std::int64_t rows,
                   ColumnView& view, const char*& why);

  [[nodiscard]] std::int64_t Rows() const noexcept { return rows_; }
  [[nodiscard]] bool IsNull(std::int64_t row) const noexcept;
  /// The element as a cell of a field of that type, texts apart; false where such a field cannot hold it exactly.
  [[nodiscard]] bool Read(std::int64_t row, FieldType type, store::Cell& cell) const noexcept;
  /// An integer that 64 bits with sign hold; false for another.
  [[nodiscard]] bool ReadInteger(std::int64_t row, std::int64_t& value) const noexcept;
  /// The bytes of a text; false where its offsets are those of none.
  [[nodiscard]] bool ReadText(std::int64_t row, std::string_view& text) const noexcept;

 private:
  template <class Element>
  [[nodiscard]] Element At(std::int64_t row) const noexcept;
  [[nodiscard]] bool ReadReal(std::int64_t row, store::Cell& cell) const noexcept;
  [[nodiscard]] bool ReadAmount(std::int64_t row, std::int64_t& value) const noexcept;
  [[nodiscard]] bool ReadScaled(std::int64_t row, FieldType type, std::int64_t& value) const noexcept;
  void ReadGuid(std::int64_t row, store::Cell& cell) const noexcept;
  [[nodiscard]] std::int64_t OffsetAt(std::int64_t row) const noexcept;

  const ColumnFormat* format_ = nullptr;
  const std::uint8_t* valid_ = nullptr;
  const std::uint8_t* elements_ = nullptr;
  const char* bytes_ = nullptr;
  std::int64_t first_ = 0;  // of the first row, in elements of the buffers
  std::int64_t rows_ = 0;
};

/// How many of the bits from `first` on are zero, which means null.
std::int64_t CountNulls(const std::uint8_t* valid, std::int64_t first, std::int64_t rows) noexcept;

/// Whether length, offset and count of nulls can be those of an array, and the buffers may be asked for their address.
/// `why` says what is wrong where that is not so.
bool IsArray(const ArrowArray& array, std::int64_t buffers, const char*& why) noexcept;

}  // namespace kiv::arrow
