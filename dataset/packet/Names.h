#pragma once

#include <algorithm>

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

}  // namespace kiv::packet
