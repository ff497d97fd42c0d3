#pragma once

#include <algorithm>
#include <vector>

#include "dataset/store/Contents.h"

namespace kiv::packet {

/// The rows that a packet leaves out, in order: those that are gone and that no record of the log names.
inline std::vector<std::uint32_t> DroppedRows(const store::Contents& contents) {
  std::vector<std::uint32_t> dropped;
  const std::uint32_t gone = contents.counts[static_cast<std::size_t>(store::StoredState::Gone)];
  for (std::uint32_t row = 0; gone > 0 && row < contents.rowCount; ++row) {
    if (contents.StateOf(row) == store::StoredState::Gone && contents.LastRecordOf(row) == store::Log::kNone) {
      dropped.push_back(row);
    }
  }
  return dropped;
}

/// The number of a row in a packet without those rows.
inline std::uint32_t NewNumber(const std::vector<std::uint32_t>& dropped, std::uint32_t row) noexcept {
  return row - static_cast<std::uint32_t>(std::ranges::lower_bound(dropped, row) - dropped.begin());
}

}  // namespace kiv::packet
