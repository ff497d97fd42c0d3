#pragma once

#include <array>
#include <cstddef>

#include "kivtools/Types.h"

namespace kiv {

/// The Texts of an exported table, from its constant values.
template <std::size_t Count>
std::array<Text, Count> FilledTexts(const std::array<TextView, Count>& values) {
  std::array<Text, Count> texts;
  for (std::size_t i = 0; i < Count; ++i) {
    texts[i] = values[i];
  }
  return texts;
}

/// Empties the Texts and gives their memory back: a cleared Text would keep its buffer.
template <std::size_t Count>
void ReleaseTexts(std::array<Text, Count>& texts) {
  texts = {};
}

}  // namespace kiv
