#pragma once

#include <gtest/gtest.h>

#include "dataset/store/Contents.h"

namespace kiv {

/// Expects the same rows under the same numbers, with their states and originals, and as many records of the log.
inline void ExpectSameRows(const DatasetView& left, const DatasetView& right) {
  ASSERT_EQ(left.GetContents().rowCount, right.GetContents().rowCount);
  EXPECT_EQ(left.GetContents().log.Count(), right.GetContents().log.Count());
  for (std::uint32_t row = 0; row < left.GetContents().rowCount; ++row) {
    ASSERT_EQ(left.GetContents().StateOf(row), right.GetContents().StateOf(row)) << row;
    for (std::size_t field = 0; field < left.GetContents().columns.size(); ++field) {
      if (left.GetContents().StateOf(row) < store::StoredState::Deleted) {
        ASSERT_EQ(left.Get(RowId{row}, left.FieldAt(field)), right.Get(RowId{row}, right.FieldAt(field)));
      }
      if (left.GetContents().StateOf(row) == store::StoredState::Modified) {
        ASSERT_EQ(left.Original(RowId{row}, left.FieldAt(field)), right.Original(RowId{row}, right.FieldAt(field)));
      }
    }
  }
}

}  // namespace kiv
