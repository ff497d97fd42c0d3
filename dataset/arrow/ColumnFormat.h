#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kivtools/dataset/Schema.h"

namespace kiv::arrow {

/// What the elements of a column are.
enum class Elements : std::uint8_t { Integer, Real, Bit, Decimal, Day, Time, Moment, Guid, Text, Bytes };

/// A format that can be taken in.
struct ColumnFormat {
  Elements elements;
  std::uint8_t width;  ///< the bytes of an element, of texts those of an offset; 0 for bits
  bool isSigned = true;
  /// What an element times `times` and divided by `parts` is: ten-thousandths, days or milliseconds.
  std::int64_t times = 1;
  std::int64_t parts = 1;
  FieldType type = FieldType::Int64;  ///< of a field that nothing is known of

  [[nodiscard]] bool IsOfTexts() const noexcept { return elements == Elements::Text || elements == Elements::Bytes; }
  /// The buffers of an array: bits of what is not null, elements, and of texts their bytes.
  [[nodiscard]] std::int64_t Buffers() const noexcept { return IsOfTexts() ? 3 : 2; }
  /// Whether a field of that type holds such elements; ten-thousandths may be amounts.
  [[nodiscard]] bool Fits(FieldType wanted, bool hasTenThousandths) const noexcept;
};

/// What a format means; nothing for one that is not taken in.
std::optional<ColumnFormat> ParseFormat(std::string_view format) noexcept;

}  // namespace kiv::arrow
