#pragma once

#include <cstdint>
#include <span>

#include "dataset/store/Cell.h"

namespace kiv::store {

/// A field and the value that it is about to get, with its bytes.
struct FieldCell {
  std::uint16_t field;
  Cell cell;
};

/// An edit that is about to be written. Done again on a dataset that is as this one was, it does the same.
struct Edit {
  enum class Kind : std::uint8_t {
    Insert,   ///< `number` is the row, `values` has all fields
    Update,   ///< `number` is the row, `values` has the changed fields
    Delete,   ///< `number` is the row
    Restore,  ///< `number` is the row, which gets its original values
    UndoTo,   ///< `number` records of the log are left
    Accept,
    Compact,
  };
  Kind kind;
  std::uint32_t number = 0;
  std::span<const FieldCell> values = {};
};

/// Is told of each edit when everything is behind it that may fail.
class EditRecorder {
 public:
  virtual ~EditRecorder() = default;
  /// Throws to refuse the edit, of which nothing has been written.
  virtual void Record(const Edit& edit) = 0;
};

}  // namespace kiv::store
