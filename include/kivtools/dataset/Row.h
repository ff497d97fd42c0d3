/// @file
/// The number and the state of a row of a dataset.
#pragma once

#include <cstdint>

namespace kiv {

/// The number of a row: given once while the dataset lives in memory, except that Compact() and saving with loading
/// number the rows anew. A bookmark that has to survive those holds the key.
enum class RowId : std::uint32_t {};

/// What has happened to a row since it was loaded or its changes were accepted.
enum class RowState : std::uint8_t {
  Unmodified,  ///< its values are the original ones, also after a change and back
  Inserted,    ///< it had no original values
  Modified,    ///< at least one value differs from the original
  Deleted,     ///< kept with its original values until the deletion is accepted
};

/// What a change does to a row.
enum class ChangeKind : std::uint8_t {
  Insert,   ///< the row is new
  Update,   ///< some of its values are others
  Delete,   ///< it is deleted
  Restore,  ///< it was deleted and is back with its original values
};

}  // namespace kiv
