#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "core/Numbers.h"
#include "dataset/store/SchemaData.h"

namespace kiv::packet {

/// The most bytes of a name.
inline constexpr std::size_t kLongestName = 63;

/// A name that a field or a dataset can have, made of any text: what no name can have becomes "_".
/// Example: "Suma totala" gives "Suma_totala", "2026" gives "_2026".
inline Text NameFrom(TextView text) {
  Text name;
  for (const char character : text.substr(0, kLongestName)) {
    name += store::IsIdentifier(Text("_") + character) ? character : '_';
  }
  return store::IsIdentifier(name) ? name : ("_" + name).substr(0, kLongestName);
}

/// The fields' names where another program's columns become fields.
class ColumnNames {
 public:
  /// The name of the next column's field: what no name can have is made into one, the later of two equal ones gets a
  /// number.
  Text Add(TextView column) {
    constexpr std::size_t kRoomForNumber = 5;
    const Text wanted = NameFrom(column);
    Text name = wanted;
    for (int number = 2; std::ranges::find(folded_, store::FoldName(name)) != folded_.end(); ++number) {
      name = wanted.substr(0, kLongestName - kRoomForNumber) + "_";
      AppendDecimal(name, number);
    }
    folded_.push_back(store::FoldName(name));
    return name;
  }
  /// The column whose field has the name, case apart; nothing for one that was given out before.
  std::optional<std::size_t> Take(TextView name) {
    const auto found = std::ranges::find(folded_, store::FoldName(name));
    if (found == folded_.end()) {
      return std::nullopt;
    }
    *found = "";
    return static_cast<std::size_t>(found - folded_.begin());
  }

 private:
  std::vector<Text> folded_;
};

}  // namespace kiv::packet
