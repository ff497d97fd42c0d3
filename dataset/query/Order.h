#pragma once

#include <cstdint>
#include <span>
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

/// A number of at most `width` bits that compares as the values of a type do. Where values have no such number that
/// tells all of them apart, equal ones decide nothing.
struct OrderedBits {
  std::uint64_t bits;
  unsigned width;
  bool isExact;
};
OrderedBits OrderedBitsOf(FieldType type, Collation collation, const store::Cell& cell) noexcept;

/// The beginning of what an order compares, in 64 bits, of which the first `width` say something.
struct PackedKey {
  std::uint64_t bits = 0;
  unsigned width = 0;

  /// Below 0 if whatever has this key comes before whatever has the other one, above 0 if after, 0 if neither is known.
  [[nodiscard]] int Compare(const PackedKey& other) const noexcept {
    const unsigned known = width < other.width ? width : other.width;
    const unsigned unknown = 64 - known;
    if (known == 0 || bits >> unknown == other.bits >> unknown) {
      return 0;
    }
    return bits < other.bits ? -1 : 1;
  }
};
/// Of cells for the first fields of an order.
PackedKey Pack(const store::Contents& contents, std::span<const OrderField> order,
               std::span<const store::Cell> cells) noexcept;

}  // namespace kiv::query
