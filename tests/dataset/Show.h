#pragma once

#include <string>

#include "dataset/store/SchemaData.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {

/// Everything that can be seen of rows, values, originals and states; not the log.
inline std::string Show(const DatasetView& view) {
  std::string shown;
  for (std::uint32_t row = 0; row < view.GetContents().rowCount; ++row) {
    if (!view.Exists(RowId{row})) {
      shown += "-\n";
      continue;
    }
    shown += std::to_string(row) + " " + std::to_string(static_cast<int>(view.State(RowId{row})));
    for (std::size_t i = 0; i < view.GetSchema().Fields().size(); ++i) {
      const FieldType type = view.GetSchema().Fields()[i].type;
      shown += " " + store::Describe(type, view.GetContents().Read(row, i));
      if (view.State(RowId{row}) != RowState::Inserted) {
        shown += "/" + store::Describe(type, view.GetContents().ReadOriginal(row, i));
      }
    }
    shown += "\n";
  }
  return shown;
}

}  // namespace kiv
