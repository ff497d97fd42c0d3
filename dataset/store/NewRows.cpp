#include "dataset/store/NewRows.h"

#include <algorithm>

#include "dataset/store/Contents.h"

namespace kiv::store {

void NewRows::FindTargets(std::vector<Column>& columns, std::uint32_t row) {
  count_ = 0;
  targets_.clear();
  std::uint32_t end = kMostRows;
  for (Column& column : columns) {
    column.values.MakeWritable(row);
    end = std::min(end, column.values.WritableEnd(row));
    std::byte* more = nullptr;
    if (column.type == FieldType::Guid) {
      column.more.MakeWritable(row);
      end = std::min(end, column.more.WritableEnd(row));
      more = column.more.WritableBlock(row);
    }
    targets_.push_back({column.values.WritableBlock(row), more, column.values.ElementWidth()});
  }
  first_ = row;
  count_ = end - row;
}

}  // namespace kiv::store
