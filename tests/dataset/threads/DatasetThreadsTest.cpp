#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

constexpr int kRows = 9000;

Dataset Filled(int salt) {
  Dataset dataset("fire", {{"id", FieldType::AutoInc, kKey},
                           {"text", FieldType::Text, 40},
                           {"suma", FieldType::Currency},
                           {"memo", FieldType::Memo}});
  Loader loader(dataset);
  for (std::int64_t i = 0; i < kRows; ++i) {
    loader.Add({i, "t" + std::to_string(i % 50), Currency::FromRaw(salt), Null{}});
  }
  loader.Finish();
  return dataset;
}

/// Edits of every kind; returns the sum of all amounts.
std::int64_t Work(int salt) {
  Dataset dataset = Filled(salt);
  const FieldRef sum = dataset.Field("suma");
  for (int i = 0; i < 300; ++i) {
    const RowId row = dataset.Find(std::int64_t{i} * 7).value();
    const Mark mark = dataset.Changes().SetMark();
    dataset.Update(row, {{sum, Currency::FromRaw(i)}, {"memo", "m" + std::to_string(i)}, {"text", std::to_string(i)}});
    dataset.Insert({{"text", "nou"}, {sum, Currency::FromRaw(1)}});
    if (i % 3 == 0) {
      dataset.Changes().RollbackTo(mark);
    } else if (i % 5 == 0) {
      dataset.Delete(row);
    }
  }
  static_cast<void>(dataset.Changes().MakeDelta());
  dataset.Compact();
  std::int64_t total = 0;
  for (const RowId row : dataset.Rows()) {
    total += dataset.GetCurrency(row, sum).Raw();
  }
  return total;
}

TEST(DatasetThreads, DifferentDatasetsAreIndependent) {
  constexpr int kThreads = 8;
  std::vector<std::int64_t> totals(kThreads);
  {
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([i, &totals] { totals[static_cast<std::size_t>(i)] = Work(i); });
    }
  }
  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(totals[static_cast<std::size_t>(i)], Work(i));
  }
}

TEST(DatasetThreads, SnapshotsAreReadWhileTheirDatasetIsEdited) {
  Dataset dataset = Filled(2);
  const FieldRef sum = dataset.Field("suma");
  const FieldRef text = dataset.Field("text");
  for (int round = 0; round < 5; ++round) {
    std::vector<std::jthread> readers;
    readers.reserve(2);
    std::int64_t expected = 0;
    for (const RowId row : dataset.Rows()) {
      expected += dataset.GetCurrency(row, sum).Raw() + static_cast<std::int64_t>(dataset.GetText(row, text).size());
    }
    for (int i = 0; i < 2; ++i) {
      readers.emplace_back([snapshot = dataset.TakeSnapshot(), sum, text, expected] {
        std::int64_t total = 0;
        for (const RowId row : snapshot.Rows()) {
          total += snapshot.GetCurrency(row, sum).Raw() + static_cast<std::int64_t>(snapshot.GetText(row, text).size());
        }
        EXPECT_EQ(total, expected);
      });
    }
    for (std::uint32_t i = 0; i < kRows; i += 3) {
      dataset.Update(RowId{i}, {{sum, Currency::FromRaw(round)}, {text, "r" + std::to_string(i)}});
      dataset.Insert({{"text", "nou" + std::to_string(round)}});
    }
    if (round % 2 == 0) {
      dataset.Changes().CancelChanges();
    }
  }
}

}  // namespace
}  // namespace kiv
