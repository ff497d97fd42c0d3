#include "dataset/query/Order.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "core/Numbers.h"
#include "dataset/query/CalculatedColumns.h"

namespace kiv::query {

using store::Cell;
using store::Contents;

namespace {

template <class Number>
int CompareNumbers(Number left, Number right) noexcept {
  return left < right ? -1 : left > right ? 1 : 0;
}

/// Units are taken out one by one: in a heap of texts they may begin at any byte.
std::uint64_t UnitAt(std::string_view bytes, std::size_t place) noexcept {
  std::uint16_t unit = 0;
  std::memcpy(&unit, bytes.data() + place * sizeof unit, sizeof unit);
  return unit;
}

int CompareUnits(std::string_view left, std::string_view right) noexcept {
  const std::size_t leftSize = left.size() / sizeof(char16_t);
  const std::size_t rightSize = right.size() / sizeof(char16_t);
  for (std::size_t i = 0; i < std::min(leftSize, rightSize); ++i) {
    if (const int order = CompareNumbers(UnitAt(left, i), UnitAt(right, i)); order != 0) {
      return order;
    }
  }
  return CompareNumbers(leftSize, rightSize);
}

int CompareValues(FieldType type, Collation collation, const Cell& left, const Cell& right) noexcept {
  switch (type) {
    case FieldType::Text:
    case FieldType::Memo:
      return CompareTexts(left.bytes, right.bytes, collation);
    case FieldType::WideText:
      return CompareUnits(left.bytes, right.bytes);
    case FieldType::Double:
      return CompareNumbers(std::bit_cast<double>(left.bits), std::bit_cast<double>(right.bits));
    case FieldType::Guid:
      return left.bits == right.bits ? CompareNumbers(left.more, right.more) : CompareNumbers(left.bits, right.bits);
    default:
      return CompareNumbers(static_cast<std::int64_t>(left.bits), static_cast<std::int64_t>(right.bits));
  }
}

/// The words of an order, one after another: names and words, and commas, which stand alone.
class Words {
 public:
  explicit Words(TextView text) noexcept : left_(text) {}

  /// The next word; empty at the end.
  TextView Peek() noexcept {
    const std::size_t begin = left_.find_first_not_of(" \t\r\n");
    left_.remove_prefix(std::min(begin, left_.size()));
    const std::size_t end = left_.starts_with(',') ? 1 : std::min(left_.find_first_of(" \t\r\n,"), left_.size());
    return left_.substr(0, end);
  }
  TextView Take() noexcept {
    const TextView word = Peek();
    left_.remove_prefix(word.size());
    return word;
  }
  /// Takes the next word if it is that one, case apart.
  bool TakeIf(TextView wanted) {
    const bool isIt = store::FoldName(Peek()) == wanted;
    if (isIt) {
      Take();
    }
    return isIt;
  }

 private:
  TextView left_;
};

[[noreturn]] void Refuse(const Contents& contents, TextView text, TextView word) {
  throw Error(contents.owner + ": ordinea " + store::Quoted(text) + ": " +
              (word.empty() ? Text("se termina inainte de vreme") : store::Quoted(word) + " nu se intelege"));
}

OrderField ParseField(const Contents& contents, TextView text, Words& words) {
  const TextView name = words.Take();
  const auto found = IndexOfAny(contents, name);
  if (name.empty() || !found) {
    Refuse(contents, text, name);
  }
  const FieldDef& field = FieldAt(contents, *found);
  if (field.type == FieldType::Blob) {
    throw Error(contents.owner + ": campul " + store::Quoted(field.name) + " de tip Blob nu are o ordine");
  }
  OrderField by{static_cast<std::uint16_t>(*found), field.collation};
  const bool isText = field.type == FieldType::Text || field.type == FieldType::Memo;
  for (;;) {
    if (words.TakeIf("desc")) {
      by.isDescending = true;
    } else if (words.TakeIf("asc")) {
      by.isDescending = false;
    } else if (isText && words.TakeIf("ro")) {
      by.collation = Collation::Romanian;
    } else if (isText && words.TakeIf("nocase")) {
      by.collation = Collation::RomanianNoCase;
    } else if (isText && words.TakeIf("binary")) {
      by.collation = Collation::Binary;
    } else if (words.TakeIf("nulls")) {
      by.nullsLast = words.TakeIf("last");
      if (!by.nullsLast && !words.TakeIf("first")) {
        Refuse(contents, text, words.Peek());
      }
    } else {
      return by;
    }
  }
}

}  // namespace

Order ParseOrder(const Contents& contents, TextView text) {
  Order order;
  Words words(text);
  while (!words.Peek().empty() || !order.empty()) {
    order.push_back(ParseField(contents, text, words));
    if (words.Peek().empty()) {
      break;
    }
    if (!words.TakeIf(",")) {
      Refuse(contents, text, words.Peek());
    }
  }
  return order;
}

Text OrderText(const Contents& contents, const Order& order) {
  Text text;
  for (const OrderField& by : order) {
    const FieldDef& field = FieldAt(contents, by.field);
    text += text.empty() ? "" : ", ";
    text += field.name;
    if (by.collation != field.collation) {
      text += by.collation == Collation::Romanian         ? " ro"
              : by.collation == Collation::RomanianNoCase ? " nocase"
                                                          : " binary";
    }
    text += by.isDescending ? " desc" : "";
    text += by.nullsLast ? " nulls last" : "";
  }
  return text;
}

int CompareCells(const OrderField& by, FieldType type, const Cell& left, const Cell& right) noexcept {
  if (left.isNull || right.isNull) {
    const int nullsFirst = static_cast<int>(right.isNull) - static_cast<int>(left.isNull);
    return by.nullsLast ? -nullsFirst : nullsFirst;
  }
  const int order = CompareValues(type, by.collation, left, right);
  return by.isDescending ? -order : order;
}

int CompareRows(const Contents& contents, std::span<const OrderField> order, std::uint32_t left,
                std::uint32_t right) noexcept {
  for (const OrderField& by : order) {
    const store::Column& column = contents.columns[by.field];
    const Cell leftCell = column.Load(left);
    const Cell rightCell = column.Load(right);
    // Equal codes are equal texts.
    if (leftCell.isNull == rightCell.isNull && leftCell.bits == rightCell.bits && leftCell.more == rightCell.more) {
      continue;
    }
    if (const int found =
            CompareCells(by, column.type, contents.Resolve(by.field, leftCell), contents.Resolve(by.field, rightCell));
        found != 0) {
      return found;
    }
  }
  return CompareNumbers(left, right);
}

OrderedBits OrderedBitsOf(FieldType type, Collation collation, const Cell& cell) noexcept {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  switch (type) {
    case FieldType::Boolean:
      return {cell.bits, 1, true};
    case FieldType::Text:
    case FieldType::Memo:
      return {CollationPrefix(cell.bytes, collation), 64, false};
    case FieldType::WideText: {
      std::uint64_t bits = 0;
      for (std::size_t i = 0; i < 4; ++i) {
        bits = bits << 16U | (i < cell.bytes.size() / 2 ? UnitAt(cell.bytes, i) : 0);
      }
      return {bits, 64, false};
    }
    case FieldType::Guid:
      return {cell.bits, 64, false};
    case FieldType::Double:
      // The bits of a double are in its order but for the sign; of negative ones the greatest is the least.
      return {(cell.bits & kSign) != 0 ? ~cell.bits : cell.bits | kSign, 64, true};
    default:
      return OrderedBitsOf(static_cast<std::int64_t>(cell.bits));
  }
}

PackedKey Pack(const Contents& contents, std::span<const OrderField> order, std::span<const Cell> cells) noexcept {
  PackedKey key;
  for (std::size_t i = 0; i < cells.size() && key.isExact; ++i) {
    const OrderField& by = order[i];
    if (cells[i].isNull) {
      key.PutNull(by);
    } else {
      key.Put(by, OrderedBitsOf(FieldAt(contents, by.field).type, by.collation, cells[i]));
    }
  }
  return key;
}

}  // namespace kiv::query
