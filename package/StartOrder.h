#pragma once

#include <span>

#include "kivtools/Package.h"

namespace kiv {

/// Shuts units down, the last one first.
inline void FinalizeUnits(std::span<const UnitEntry> units) {
  for (; !units.empty(); units = units.first(units.size() - 1)) {
    units.back().finalization();
  }
}

/// Starts units, the first one first. If one does not start, those before it are shut down again and its exception goes
/// on.
inline void InitializeUnits(std::span<const UnitEntry> units) {
  for (std::size_t started = 0; started < units.size(); ++started) {
    try {
      units[started].initialization();
    } catch (...) {
      FinalizeUnits(units.first(started));
      throw;
    }
  }
}

}  // namespace kiv
