#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "dataset/query/RowList.h"
#include "dataset/query/RowSort.h"
#include "kivtools/dataset/Loader.h"

// The sort by packed numbers against the plain comparison of rows, and the leaves against a vector.

namespace kiv::query {
namespace {

/// Fields whose values need few bits, all 64, or cannot be told apart by 64; with extremes and nulls.
Dataset ManyTypes(std::uint32_t seed, std::uint32_t rows, bool withNulls, bool withHeap) {
  Dataset dataset("tipuri", {{"i2", FieldType::Int16},
                             {"i4", FieldType::Int32},
                             {"i8", FieldType::Int64},
                             {"d", FieldType::Date},
                             {"m", FieldType::DateTime},
                             {"f", FieldType::Double},
                             {"b", FieldType::Boolean},
                             {"g", FieldType::Guid},
                             {"s", FieldType::Text},
                             {"w", FieldType::WideText},
                             {"n", FieldType::Memo}});
  std::mt19937 random(seed);
  const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  const auto extreme = [&]<class Number>(Number /*of*/) {
    constexpr Number kNumbers[] = {std::numeric_limits<Number>::min(), -1, 0, 1, std::numeric_limits<Number>::max()};
    return std::int64_t{kNumbers[below(5)]};
  };
  Loader loader(dataset);
  for (std::uint32_t row = 0; row < rows; ++row) {
    const Text text = Text(std::size_t{below(3)} * 5, 'x') + (below(2) == 0 ? "a" : "A") +
                      std::to_string(withHeap ? row * 7919 % rows : below(9));
    const WideText wide(below(6), static_cast<char16_t>(0x100 + below(3)));
    const double doubles[] = {-std::numeric_limits<double>::infinity(), -2.5, -1e-300, 0, 1e-300, 3, 1e300};
    std::vector<ValueView> values = {extreme(std::int16_t{}),
                                     below(2) == 0 ? extreme(std::int32_t{}) : below(50),
                                     below(2) == 0 ? extreme(std::int64_t{}) : below(50),
                                     DateTime(below(90)),
                                     DateTime(below(90) + 0.5),
                                     doubles[below(7)],
                                     below(2) == 0,
                                     Guid{below(2), 0, 0, {static_cast<std::uint8_t>(below(3))}},
                                     text,
                                     wide,
                                     text};
    for (ValueView& value : values) {
      value = withNulls && below(5) == 0 ? ValueView() : value;
    }
    loader.Add(values);
  }
  loader.Finish();
  return dataset;
}

TEST(RowSort, IsWhatComparingRowsGives) {
  std::mt19937 random(3);
  for (std::uint32_t seed = 0; seed < 120; ++seed) {
    const bool withHeap = seed % 40 == 39;
    Dataset dataset = ManyTypes(seed, withHeap ? 70'000 : seed % 40 * 60, seed % 3 > 0, withHeap);
    for (std::uint32_t row = 0; row < dataset.RowCount(); row += 17) {
      dataset.Delete(RowId{row});
    }
    Order order;
    for (std::uint64_t left = withHeap ? 1 : random() % 4; left > 0; --left) {
      const auto field = static_cast<std::uint16_t>(withHeap ? 8 : random() % 11);
      order.push_back({field, static_cast<Collation>(random() % 3), random() % 2 == 0, random() % 2 == 0});
    }
    const store::Contents& contents = dataset.GetContents();
    std::vector<std::uint32_t> expected;
    for (const RowId row : dataset.Rows()) {
      expected.push_back(static_cast<std::uint32_t>(row));
    }
    std::ranges::sort(expected, [&](std::uint32_t left, std::uint32_t right) {
      return CompareRows(contents, order, left, right) < 0;
    });
    std::vector<std::uint32_t> sorted = PresentRows(contents);
    SortRows(contents, order, sorted);
    ASSERT_EQ(sorted, expected) << OrderText(contents, order) << ", seed " << seed;
    // What an index packs of a row never says otherwise.
    const auto packed = [&](std::uint32_t row) {
      std::vector<store::Cell> cells;
      for (const OrderField& by : order) {
        cells.push_back(contents.Read(row, by.field));
      }
      return Pack(contents, order, cells);
    };
    for (std::size_t i = 1; i < expected.size(); ++i) {
      ASSERT_LE(packed(expected[i - 1]).Compare(packed(expected[i])), 0) << OrderText(contents, order);
    }
  }
}

TEST(RowList, HoldsWhatAVectorHolds) {
  std::mt19937 random(5);
  const auto below = [&](std::size_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  // Some rows have the same key, and rows that are far from each other, too.
  const auto bitsOf = [](std::uint32_t row) { return std::uint64_t{row / 3000}; };
  const auto keyOf = [&](std::uint32_t row) { return PackedKey{bitsOf(row), 64}; };
  for (const std::uint32_t first : {0U, 1U, 960U, 961U, 5000U}) {
    std::vector<std::uint32_t> expected;
    for (std::uint32_t i = 0; i < first; ++i) {
      expected.push_back(i * 1000);
    }
    RowList list;
    list.Assign(expected, bitsOf);
    const auto placeOf = [&](std::uint32_t row) {
      return list.FirstNot(keyOf(row), [row](std::uint32_t other) { return other < row; });
    };
    // It grows in the middle and at the end, then shrinks to nothing.
    for (int step = 0; step < 12'000; ++step) {
      const bool inserts = step < 6000 ? step % 5 != 0 : step % 8 == 0;
      if (inserts || expected.empty()) {
        const std::uint32_t row = step % 3 == 0 && !expected.empty() ? expected.back() + 1 : below(8'000'000);
        const auto at = std::ranges::lower_bound(expected, row);
        ASSERT_EQ(list.PositionOf(placeOf(row)), at - expected.begin());
        list.Reserve(1 + below(3));
        list.Insert(placeOf(row), row, keyOf(row).bits);
        list.DropSpares();
        expected.insert(at, row);
      } else {
        const std::uint32_t position = below(expected.size());
        const RowList::Place place = placeOf(expected[position]);
        ASSERT_EQ(list.At(place), expected[position]);
        list.Erase(place);
        expected.erase(std::ranges::find(expected, expected[position]));
      }
      ASSERT_EQ(list.Count(), expected.size());
      for (int i = 0; i < 3 && !expected.empty(); ++i) {
        const std::uint32_t position = i == 0 ? list.Count() - 1 : below(expected.size());
        ASSERT_EQ(list.At(position), expected[position]);
        ASSERT_EQ(list.PositionOf(placeOf(expected[position])),
                  std::ranges::lower_bound(expected, expected[position]) - expected.begin());
      }
      if (step % 1000 == 0) {
        for (std::uint32_t i = 0; i < expected.size(); ++i) {
          ASSERT_EQ(list.At(i), expected[i]);
        }
      }
    }
  }
}

TEST(RowList, HasTheRoomThatItWasGivenWhateverIsErasedBetween) {
  for (const std::uint32_t rows : {0U, 1U, 2000U}) {
    RowList list;
    std::vector<std::uint32_t> first(rows);
    for (std::uint32_t i = 0; i < rows; ++i) {
      first[i] = i;
    }
    list.Assign(first, [](std::uint32_t) { return 0; });
    constexpr std::uint32_t kInsertions = 20'000;
    list.Reserve(kInsertions);
    std::mt19937 random(rows);
    for (std::uint32_t inserted = 0; inserted < kInsertions;) {
      // Waves of insertions at the beginning and the end, each taken back to nothing.
      for (auto wave = static_cast<std::uint32_t>(random() % 3000); wave > 0 && inserted < kInsertions; --wave) {
        const std::uint32_t position = wave % 2 == 0 ? 0 : list.Count();
        list.Insert(list.PlaceAt(position), ++inserted, 0);
      }
      while (list.Count() > 0) {
        list.Erase(list.PlaceAt(static_cast<std::uint32_t>(random() % list.Count())));
      }
    }
    ASSERT_EQ(list.Count(), 0U);
  }
}

}  // namespace
}  // namespace kiv::query
