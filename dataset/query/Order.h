#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

#include "dataset/store/Contents.h"
#include "kivtools/dataset/Collation.h"

namespace kiv::query {

/// One field of an order.
struct OrderField {
  std::uint16_t field;
  Collation collation = Collation::Romanian;
  bool isDescending = false;
  bool nullsLast = false;

  bool operator==(const OrderField&) const = default;
};

/// An order of rows: fields, the first of which counts most. Rows that are equal in all of them stand in the order of
/// their numbers; without a field all do.
using Order = std::vector<OrderField>;

/// Reads "partener, data desc nulls last, cod binary". Throws Error naming what is no field and no word of an order,
/// and for a Blob, which has none.
Order ParseOrder(const store::Contents& contents, TextView text);
/// The order as text; what its fields have anyway is left out. Example: "partener, data desc".
Text OrderText(const store::Contents& contents, const Order& order);

/// Below 0 if `left` comes before `right`, 0 if neither does. Both are of that field; a text is its bytes, codes do not
/// count.
int CompareCells(const OrderField& by, FieldType type, const store::Cell& left, const store::Cell& right) noexcept;
/// The same of two rows by all fields of the order; equal ones by their numbers.
int CompareRows(const store::Contents& contents, std::span<const OrderField> order, std::uint32_t left,
                std::uint32_t right) noexcept;

/// A number of `width` bits that compares as the values of a type do: of two values with different ones the first bits
/// that both have differ. Where values have no such number that tells all of them apart, equal ones decide nothing.
struct OrderedBits {
  std::uint64_t bits;
  unsigned width;
  bool isExact;
};
OrderedBits OrderedBitsOf(FieldType type, Collation collation, const store::Cell& cell) noexcept;
/// Of an integer as many bits as it needs: its sign, how many binary digits it has, and those behind the first, which
/// is a one. So small numbers, days and amounts leave room for the fields behind them.
template <std::signed_integral Integer>
OrderedBits OrderedBitsOf(Integer value) noexcept {
  constexpr unsigned kBefore = 7;
  const auto digits = static_cast<std::make_unsigned_t<Integer>>(value < 0 ? ~value : value);
  const auto count = static_cast<unsigned>(std::bit_width(digits));
  const unsigned behind = count > 0 ? count - 1 : 0;
  const unsigned kept = std::min(behind, 64 - kBefore);
  const std::uint64_t rest =
      static_cast<std::make_unsigned_t<Integer>>(digits - std::bit_floor(digits)) >> (behind - kept);
  const std::uint64_t bits = std::uint64_t{64U | count} << kept | rest;
  return {value < 0 ? bits ^ (~std::uint64_t{0} >> (64 - kBefore - kept)) : bits, kBefore + kept, kept == behind};
}

/// The beginning of what an order compares, in 64 bits, of which the first `width` say something; the others are zero.
/// Of two rows the one with the lesser bits comes first, whatever the widths are.
struct PackedKey {
  std::uint64_t bits = 0;
  unsigned width = 0;
  bool isExact = true;  ///< says all of it: what has equal bits is equal

  /// Appends the value of the next field, or as much of it as there is room for, as long as all before it is exact.
  void Put(const OrderField& by, OrderedBits value) noexcept {
    if (by.isDescending) {
      value.bits ^= ~std::uint64_t{0} >> (64 - value.width);
    }
    Append({by.nullsLast ? 0U : 1U, 1, true});
    Append(value);
  }
  /// The same of a null.
  void PutNull(const OrderField& by) noexcept { Append({by.nullsLast ? 1U : 0U, 1, true}); }
  /// Below 0 if whatever has this key comes before whatever has the other one, above 0 if after, 0 if neither is known.
  [[nodiscard]] int Compare(const PackedKey& other) const noexcept {
    return CompareWith(other.bits, width < other.width ? width : other.width);
  }
  /// The same with the key of a row, of which only the bits are known.
  [[nodiscard]] int CompareWith(std::uint64_t row) const noexcept { return CompareWith(row, width); }

 private:
  [[nodiscard]] int CompareWith(std::uint64_t other, unsigned known) const noexcept {
    const unsigned unknown = 64 - known;
    if (known == 0 || bits >> unknown == other >> unknown) {
      return 0;
    }
    return bits < other ? -1 : 1;
  }
  void Append(OrderedBits value) noexcept {
    const unsigned room = isExact ? 64 - width : 0;
    isExact = isExact && value.isExact && value.width <= room;
    if (value.width <= room) {
      bits |= value.bits << (room - value.width);
      width += value.width;
    } else if (room > 0) {
      bits |= value.bits >> (value.width - room);
      width = 64;
    }
  }
};
/// Of cells for the first fields of an order.
PackedKey Pack(const store::Contents& contents, std::span<const OrderField> order,
               std::span<const store::Cell> cells) noexcept;

}  // namespace kiv::query
