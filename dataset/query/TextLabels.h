#pragma once

#include <cstdint>
#include <string_view>

#include "dataset/query/Order.h"
#include "dataset/query/RowList.h"

namespace kiv::query {

/// Numbers of 32 bits for the texts in the dictionary of a field, in their order: rows compare by them without looking
/// at a text. Between the even numbers that texts have there is room for others, which come while the order is in use.
/// Where it has run out several texts share the odd number between two even ones, and say so. It never happens that a
/// text gets another number.
class TextLabels {
 public:
  TextLabels(const store::Contents& contents, std::uint16_t field, Collation collation) noexcept
      : contents_(contents), by_{field, collation} {}

  /// Gives numbers to the entries that have none: to all at once for the first time, later to one after another. Throws
  /// std::bad_alloc.
  void Extend();
  /// Whether the field still has the dictionary that the entries were in.
  [[nodiscard]] bool HasDictionary() const noexcept { return GetTexts().HasDictionary(); }

  /// The number of an entry.
  [[nodiscard]] OrderedBits Of(std::uint32_t code) const noexcept { return BitsOf(LabelAt(code)); }
  /// The number that stands for any text: that of an equal one, or the odd one behind the greatest that is less.
  [[nodiscard]] OrderedBits OfText(std::string_view bytes) const noexcept;

 private:
  using Label = std::uint32_t;

  [[nodiscard]] const store::Texts& GetTexts() const noexcept { return contents_.columns[by_.field].texts; }
  [[nodiscard]] FieldType GetType() const noexcept { return contents_.columns[by_.field].type; }
  [[nodiscard]] Label LabelAt(std::uint32_t code) const noexcept { return labels_.At<Label>(code); }
  [[nodiscard]] static OrderedBits BitsOf(Label label) noexcept { return {label, 32, label % 2 == 0}; }
  [[nodiscard]] store::Cell TextOf(std::uint32_t code) const noexcept;
  [[nodiscard]] PackedKey PrefixOf(const store::Cell& text) const noexcept;
  [[nodiscard]] RowList::Place PlaceOf(const store::Cell& text) const noexcept;
  void LabelAll(std::uint32_t count);
  [[nodiscard]] Label LabelFor(const store::Cell& text, std::uint32_t position) const noexcept;

  const store::Contents& contents_;
  OrderField by_;
  store::Plane labels_{store::Plane::Width::Four};  // by code
  RowList codes_;                                   // in the order of their texts
};

}  // namespace kiv::query
