#include "dataset/arrow/ColumnView.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/Int128.h"
#include "dataset/arrow/Epoch.h"

namespace kiv::arrow {
namespace {

using store::Cell;

bool BitAt(const std::uint8_t* bits, std::int64_t place) noexcept {
  return (bits[place / 8] >> (place % 8) & 1U) != 0;
}

bool Refused(const char*& why, const char* reason) noexcept {
  why = reason;
  return false;
}

/// Whether all of the array's bits of what is not null, from its first element on, are as many as it says.
bool HasRightNulls(const ArrowArray& array) noexcept {
  const auto* const valid = static_cast<const std::uint8_t*>(array.buffers[0]);
  return valid == nullptr ? array.null_count <= 0
                          : array.null_count < 0 || array.null_count == CountNulls(valid, array.offset, array.length);
}

}  // namespace

std::int64_t CountNulls(const std::uint8_t* valid, std::int64_t first, std::int64_t rows) noexcept {
  std::int64_t set = 0;
  for (std::int64_t place = first, end = first + rows; place < end;) {
    if (place % 8 == 0 && end - place >= 8) {
      set += std::popcount(valid[place / 8]);
      place += 8;
    } else {
      set += BitAt(valid, place) ? 1 : 0;
      ++place;
    }
  }
  return rows - set;
}

bool IsArray(const ArrowArray& array, std::int64_t buffers, const char*& why) noexcept {
  // Elements of 16 bytes have addresses.
  constexpr std::int64_t kMostElements = std::numeric_limits<std::ptrdiff_t>::max() / 16 - 1;
  if (array.length < 0 || array.offset < 0 || array.length > kMostElements ||
      array.offset > kMostElements - array.length) {
    return Refused(why, "lungimea sau inceputul nu pot fi ale unei coloane");
  }
  if (array.null_count < -1 || array.null_count > array.length) {
    return Refused(why, "numarul de valori nule nu poate fi al coloanei");
  }
  if (array.n_buffers != buffers || array.buffers == nullptr) {
    return Refused(why, "are alt numar de zone de memorie decat formatul ei");
  }
  return true;
}

bool ColumnView::Make(const ArrowArray& array, const ColumnFormat& format, std::int64_t first, std::int64_t rows,
                      ColumnView& view, const char*& why) {
  if (!IsArray(array, format.Buffers(), why)) {
    return false;
  }
  if (array.n_children != 0) {
    return Refused(why, "are alte coloane in ea");
  }
  if (first > array.length - rows) {
    return Refused(why, "are mai putine valori decat lotul randuri");
  }
  if (!HasRightNulls(array)) {
    return Refused(why, "numarul de valori nule nu este cel al bitilor");
  }
  if (rows > 0 && array.buffers[1] == nullptr) {
    return Refused(why, "nu are valori");
  }
  view.format_ = &format;
  view.valid_ = static_cast<const std::uint8_t*>(array.buffers[0]);
  view.elements_ = static_cast<const std::uint8_t*>(array.buffers[1]);
  view.bytes_ = format.IsOfTexts() ? static_cast<const char*>(array.buffers[2]) : nullptr;
  view.first_ = array.offset + first;
  view.rows_ = rows;
  return true;
}

bool ColumnView::IsNull(std::int64_t row) const noexcept {
  return valid_ != nullptr && !BitAt(valid_, first_ + row);
}

template <class Element>
Element ColumnView::At(std::int64_t row) const noexcept {
  Element element;
  std::memcpy(&element, elements_ + (first_ + row) * static_cast<std::int64_t>(sizeof element), sizeof element);
  return element;
}

bool ColumnView::ReadInteger(std::int64_t row, std::int64_t& value) const noexcept {
  const bool isSigned = format_->isSigned;
  switch (format_->width) {
    case 1:
      value = isSigned ? At<std::int8_t>(row) : At<std::uint8_t>(row);
      return true;
    case 2:
      value = isSigned ? At<std::int16_t>(row) : At<std::uint16_t>(row);
      return true;
    case 4:
      value = isSigned ? std::int64_t{At<std::int32_t>(row)} : std::int64_t{At<std::uint32_t>(row)};
      return true;
    default:
      value = At<std::int64_t>(row);
      return isSigned || value >= 0;
  }
}

bool ColumnView::ReadReal(std::int64_t row, Cell& cell) const noexcept {
  const double number = format_->width == 4 ? double{At<float>(row)} : At<double>(row);
  cell.bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
  return !std::isnan(number);
}

bool ColumnView::ReadAmount(std::int64_t row, std::int64_t& value) const noexcept {
  struct Halves {
    std::int64_t low;
    std::int64_t high;
  };
  const auto halves = At<Halves>(row);
  const auto product = Int128::Product(halves.low, format_->times).In64Bits();
  value = product.value_or(0);
  return product && halves.high == (halves.low < 0 ? -1 : 0);
}

bool ColumnView::ReadScaled(std::int64_t row, FieldType type, std::int64_t& value) const noexcept {
  const std::int64_t element = format_->width == 4 ? At<std::int32_t>(row) : At<std::int64_t>(row);
  const auto product = Int128::Product(element, format_->times).In64Bits();
  if (!product || *product % format_->parts != 0) {
    return false;
  }
  const std::int64_t fromEpoch = *product / format_->parts;
  const std::int64_t epoch = type == FieldType::Date ? kEpochDay : type == FieldType::DateTime ? kEpochMoment : 0;
  const store::NumberRange range = store::RangeOf(type);
  const bool fits = fromEpoch >= range.least - epoch && fromEpoch <= range.most - epoch;
  value = fits ? fromEpoch + epoch : 0;
  return fits;
}

void ColumnView::ReadGuid(std::int64_t row, Cell& cell) const noexcept {
  const std::uint8_t* const bytes = elements_ + (first_ + row) * 16;
  for (std::size_t i = 0; i < 8; ++i) {
    cell.bits = cell.bits << 8U | bytes[i];
    cell.more = cell.more << 8U | bytes[8 + i];
  }
}

bool ColumnView::Read(std::int64_t row, FieldType type, Cell& cell) const noexcept {
  cell = {.isNull = false};
  std::int64_t value = 0;
  bool isRead = true;
  switch (format_->elements) {
    case Elements::Integer:
      isRead = ReadInteger(row, value);
      isRead = isRead && (type != FieldType::Int16 || value == static_cast<std::int16_t>(value)) &&
               (type != FieldType::Int32 || value == static_cast<std::int32_t>(value));
      break;
    case Elements::Real:
      return ReadReal(row, cell);
    case Elements::Bit:
      value = BitAt(elements_, first_ + row) ? 1 : 0;
      break;
    case Elements::Decimal:
      isRead = ReadAmount(row, value);
      break;
    case Elements::Guid:
      ReadGuid(row, cell);
      return true;
    default:
      isRead = ReadScaled(row, type, value);
      break;
  }
  cell.bits = static_cast<std::uint64_t>(value);
  return isRead;
}

std::int64_t ColumnView::OffsetAt(std::int64_t row) const noexcept {
  return format_->width == 4 ? At<std::int32_t>(row) : At<std::int64_t>(row);
}

bool ColumnView::ReadText(std::int64_t row, std::string_view& text) const noexcept {
  constexpr std::int64_t kLongest = 0x7FFFFFFF;
  const std::int64_t from = OffsetAt(row);
  const std::int64_t to = OffsetAt(row + 1);
  if (from < 0 || to < from || to - from > kLongest || to > std::numeric_limits<std::ptrdiff_t>::max() ||
      (to > from && bytes_ == nullptr)) {
    return false;
  }
  text = to == from ? std::string_view() : std::string_view(bytes_ + from, static_cast<std::size_t>(to - from));
  return true;
}

}  // namespace kiv::arrow
