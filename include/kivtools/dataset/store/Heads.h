/// @file
/// What the getters of DatasetView read. They are inline and short: whoever goes through rows waits for memory, and the
/// less there is around each wait, the more of them run side by side.
#pragma once

#include <cstdint>
#include <vector>

#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/store/Plane.h"

namespace kiv::store {

/// RowState, and what lies behind it.
enum class StoredState : std::uint8_t { Unmodified, Inserted, Modified, Deleted, Gone };
inline constexpr std::size_t kStates = 5;

/// The values of one field, without what codes and numbers stand for.
struct ColumnHead {
  FieldType type;
  Plane values;
  Plane nulls{Plane::Width::Bit, Plane::Filled::Zeros};

  [[nodiscard]] bool IsNull(std::uint32_t row) const noexcept { return nulls.BitAt(row); }
};

/// Which rows there are, and where their values lie.
struct ContentsHead {
  const SchemaData* schemaData = nullptr;
  /// All that have ever been, gone ones too.
  std::uint32_t rowCount = 0;
  Plane states{Plane::Width::One, Plane::Filled::Zeros};
  /// Where the columns lie, in the order of the fields.
  std::vector<const ColumnHead*> columnHeads;

  [[nodiscard]] StoredState StateOf(std::uint32_t row) const noexcept {
    return static_cast<StoredState>(states.AtOrZero<std::uint8_t>(row));
  }
  /// Whether there is such a row, not deleted.
  [[nodiscard]] bool IsPresent(std::uint32_t row) const noexcept {
    return row < rowCount && StateOf(row) < StoredState::Deleted;
  }
};

}  // namespace kiv::store
