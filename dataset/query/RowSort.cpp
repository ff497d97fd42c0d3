#include "dataset/query/RowSort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <deque>
#include <limits>
#include <memory>
#include <string>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Elements.h"
#include "dataset/query/OrderReader.h"

// Rows are sorted by one number each, which holds as many of the fields as 64 bits have room for: of numbers and days
// how far they are above the least, of texts in a dictionary the place of the text in it, of other texts what they
// begin with. Such numbers are dealt out digit by digit. Only rows whose numbers are equal and do not say all are
// compared.

namespace kiv::query {

using store::Cell;
using store::Column;
using store::Contents;

namespace {

/// What one field of the order gives to the numbers of the rows.
class FieldKey {
 public:
  FieldKey(const Contents& contents, const OrderField& by, std::span<const std::uint32_t> rows)
      : contents_(contents), column_(contents.columns[by.field]), by_(by), rows_(rows) {
    // For a few rows it costs less to look at their own texts.
    if (store::TraitsOf(column_.type).storage == store::Storage::Texts && column_.texts.HasDictionary() &&
        column_.texts.EntryCount() <= rows.size()) {
      RankEntries();
    }
    FindRange();
  }

  /// How many bits it needs, and whether they tell all values apart.
  [[nodiscard]] unsigned Width() const noexcept { return width_; }
  [[nodiscard]] bool IsExact() const noexcept { return isExact_; }

  /// Calls back with each place and its number, which has Width() bits.
  template <class Take>
  void ForEach(Take&& take) const {
    ForEachBits([&](std::size_t i, bool isNull, auto bits) {
      using Bits = decltype(bits);
      const Bits above = by_.isDescending ? static_cast<Bits>(most_) - bits : bits - static_cast<Bits>(least_);
      take(i, isNull ? null_ : above + std::uint64_t{hasNull_ && !by_.nullsLast});
    });
  }

 private:
  /// Calls back with each place, whether it is null, and the bits in which the values compare.
  template <class Take>
  void ForEachBits(Take&& take) const {
    // The element of a null is zero, of which there may be no text.
    const auto takeElement = [&](std::size_t i, auto element, auto&& bitsOf) {
      using Bits = decltype(bitsOf(element));
      const bool isNull = column_.IsNull(rows_[i]);
      take(i, isNull, isNull ? static_cast<Bits>(least_) : bitsOf(element));
    };
    if (!ranks_.empty()) {
      ForEachElement<std::uint32_t>(column_, rows_, [&](std::size_t i, std::uint32_t code) {
        takeElement(i, code, [&](std::uint32_t of) { return ranks_[of]; });
      });
    } else if (!ForEachInteger(column_, rows_, [&](std::size_t i, auto value) {
                 takeElement(i, value, [](auto of) { return Biased(of); });
               })) {
      for (std::size_t i = 0; i < rows_.size(); ++i) {
        const Cell cell = contents_.Read(rows_[i], by_.field);
        take(i, cell.isNull, cell.isNull ? least_ : OrderedBitsOf(column_.type, by_.collation, cell).bits);
      }
    }
  }

  template <class Integer>
  static auto Biased(Integer value) noexcept {
    using Bits = std::make_unsigned_t<Integer>;
    constexpr Bits kSign = static_cast<Bits>(Bits{1} << (sizeof(Bits) * 8 - 1));
    return static_cast<Bits>(value) ^ kSign;
  }

  /// Gives each text of the dictionary its place in the order; equal ones have the same.
  void RankEntries() {
    const std::uint32_t count = column_.texts.EntryCount();
    std::vector<Cell> cells(count);
    std::vector<std::pair<std::uint64_t, std::uint32_t>> entries(count);
    for (std::uint32_t code = 0; code < count; ++code) {
      cells[code] = contents_.Resolve(by_.field, {.bits = code, .isNull = false});
      entries[code] = {OrderedBitsOf(column_.type, by_.collation, cells[code]).bits, code};
    }
    const OrderField ascending{by_.field, by_.collation};
    const auto compare = [&](const auto& left, const auto& right) {
      return left.first != right.first ? (left.first < right.first ? -1 : 1)
                                       : CompareCells(ascending, column_.type, cells[left.second], cells[right.second]);
    };
    std::ranges::sort(entries, [&](const auto& left, const auto& right) { return compare(left, right) < 0; });
    ranks_.resize(count);
    std::uint32_t rank = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      rank += i > 0 && compare(entries[i - 1], entries[i]) != 0 ? 1 : 0;
      ranks_[entries[i].second] = rank;
    }
  }

  template <class Bits>
  struct Extent {
    Bits least = std::numeric_limits<Bits>::max();
    Bits most = 0;
    void Take(Bits bits) noexcept {
      least = std::min(least, bits);
      most = std::max(most, bits);
    }
  };

  void FindRange() {
    Extent<std::uint32_t> narrow;
    Extent<std::uint64_t> wide;
    ForEachBits([&](std::size_t /*i*/, bool isNull, auto bits) {
      if (isNull) {
        hasNull_ = true;
      } else if constexpr (sizeof bits == sizeof narrow.least) {
        narrow.Take(bits);
      } else {
        wide.Take(bits);
      }
    });
    // Of the one that has taken nothing the least is above the most.
    if (narrow.least <= narrow.most) {
      least_ = narrow.least;
      most_ = narrow.most;
    } else if (wide.least <= wide.most) {
      least_ = wide.least;
      most_ = wide.most;
    }
    const std::uint64_t range = most_ - least_;
    isExact_ = !ranks_.empty() || OrderedBitsOf(column_.type, by_.collation, {}).isExact;
    if (hasNull_ && range == std::numeric_limits<std::uint64_t>::max()) {
      // No number is left for the nulls: they get that of the value next to them, and the rows are compared.
      hasNull_ = false;
      isExact_ = false;
      null_ = by_.nullsLast ? range : 0;
      width_ = 64;
      return;
    }
    null_ = by_.nullsLast ? range + 1 : 0;
    width_ = static_cast<unsigned>(std::bit_width(range + (hasNull_ ? 1 : 0)));
  }

  const Contents& contents_;
  const Column& column_;
  const OrderField& by_;
  std::span<const std::uint32_t> rows_;
  std::vector<std::uint32_t> ranks_;  // by code
  std::uint64_t least_ = 0;
  std::uint64_t most_ = 0;
  std::uint64_t null_ = 0;
  unsigned width_ = 0;
  bool hasNull_ = false;
  bool isExact_ = true;
};

template <class Key>
struct Item {
  Key key;
  std::uint32_t row;
};

/// Sorts by the lowest `bits` of the keys; what is equal stays in its order. The result is in one of the two, which is
/// returned.
template <class Key>
Item<Key>* SortByKey(Item<Key>* from, Item<Key>* to, std::size_t count, unsigned bits) {
  constexpr unsigned kMostBits = 11;
  const unsigned passes = (bits + kMostBits - 1) / kMostBits;
  for (unsigned pass = 0; pass < passes; ++pass) {
    const unsigned width = (bits + passes - 1) / passes;
    const unsigned shift = pass * width;
    const auto digitOf = [shift, mask = (Key{1} << width) - 1](Key key) {
      return static_cast<std::size_t>(key >> shift & mask);
    };
    std::array<std::uint32_t, std::size_t{1} << kMostBits> ends{};
    for (std::size_t i = 0; i < count; ++i) {
      ++ends[digitOf(from[i].key)];
    }
    std::uint32_t sum = 0;
    for (std::uint32_t& end : ends) {
      sum += std::exchange(end, sum);
    }
    for (std::size_t i = 0; i < count; ++i) {
      to[ends[digitOf(from[i].key)]++] = from[i];
    }
    std::swap(from, to);
  }
  return from;
}

template <class Key>
void SortByFields(const Contents& contents, const Order& order, std::span<const FieldKey> fields, bool isExact,
                  unsigned bits, std::vector<std::uint32_t>& rows) {
  const auto memory = std::make_unique_for_overwrite<Item<Key>[]>(rows.size() * 2);
  Item<Key>* const items = memory.get();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    items[i] = {0, rows[i]};
  }
  unsigned left = bits;
  for (const FieldKey& field : fields) {
    const unsigned taken = std::min(field.Width(), left);
    const unsigned dropped = field.Width() - taken;
    if (taken == 0) {
      continue;
    }
    field.ForEach([&](std::size_t i, std::uint64_t number) {
      const Key before = taken >= sizeof(Key) * 8 ? 0 : static_cast<Key>(items[i].key << taken);
      // Where keys have 32 bits there is room for all.
      items[i].key =
          before | (sizeof(Key) == sizeof number ? static_cast<Key>(number >> dropped) : static_cast<Key>(number));
    });
    left -= taken;
  }
  Item<Key>* const sorted = SortByKey(items, items + rows.size(), rows.size(), bits);
  for (std::size_t begin = 0, end = 0; !isExact && begin < rows.size(); begin = end) {
    while (end < rows.size() && sorted[end].key == sorted[begin].key) {
      ++end;
    }
    std::sort(sorted + begin, sorted + end, [&](const Item<Key>& one, const Item<Key>& other) {
      return CompareRows(contents, order, one.row, other.row) < 0;
    });
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i] = sorted[i].row;
  }
}

/// Sorts by fields some of which are calculated, once for each row.
void SortCalculated(const Contents& contents, const Order& order, OrderReader& reader,
                    std::vector<std::uint32_t>& rows) {
  struct Keyed {
    PackedKey key;
    std::uint32_t row;
    std::size_t place;
  };
  std::vector<Cell> cells;
  cells.reserve(rows.size() * order.size());
  std::deque<std::string> bytes;
  std::vector<Keyed> items;
  items.reserve(rows.size());
  for (const std::uint32_t row : rows) {
    items.push_back({{}, row, cells.size()});
    for (std::size_t i = 0; i < order.size(); ++i) {
      Cell& cell = cells.emplace_back(reader.Read(i, row));
      if (!cell.bytes.empty() && CalculatedAt(contents, order[i].field) != nullptr) {
        cell.bytes = bytes.emplace_back(cell.bytes);
      }
    }
    items.back().key = Pack(contents, order, {&cells[items.back().place], order.size()});
  }
  std::ranges::sort(items, [&](const Keyed& left, const Keyed& right) {
    int found = left.key.Compare(right.key);
    for (std::size_t i = 0; found == 0 && i < order.size(); ++i) {
      found =
          CompareCells(order[i], FieldAt(contents, order[i].field).type, cells[left.place + i], cells[right.place + i]);
    }
    return found != 0 ? found < 0 : left.row < right.row;
  });
  std::ranges::transform(items, rows.begin(), &Keyed::row);
}

}  // namespace

std::vector<std::uint32_t> PresentRows(const Contents& contents) {
  std::vector<std::uint32_t> rows;
  rows.reserve(contents.rowCount);
  for (std::uint32_t block = 0; block < contents.BlockCount(); ++block) {
    const std::uint32_t first = block * store::kBlockRows;
    const bool isPlain = contents.states.BlockBytes(block).empty();
    for (std::uint32_t row = first; row < first + contents.RowsIn(block); ++row) {
      if (isPlain || contents.IsPresent(row)) {
        rows.push_back(row);
      }
    }
  }
  return rows;
}

void SortRows(const Contents& contents, const Order& order, std::vector<std::uint32_t>& rows) {
  if (OrderReader reader(contents, order); reader.Calculates()) {
    SortCalculated(contents, order, reader, rows);
    return;
  }
  std::vector<FieldKey> fields;
  fields.reserve(order.size());
  unsigned bits = 0;
  bool isExact = true;
  for (const OrderField& by : order) {
    if (bits == 64 || !isExact) {
      isExact = false;
      break;
    }
    const FieldKey& field = fields.emplace_back(contents, by, rows);
    isExact = field.IsExact() && bits + field.Width() <= 64;
    bits = std::min(bits + field.Width(), 64U);
  }
  if (bits == 0 && isExact) {
    return;
  }
  if (bits <= 32) {
    SortByFields<std::uint32_t>(contents, order, fields, isExact, bits, rows);
  } else {
    SortByFields<std::uint64_t>(contents, order, fields, isExact, bits, rows);
  }
}

}  // namespace kiv::query
