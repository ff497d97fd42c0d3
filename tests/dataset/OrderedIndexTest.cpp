#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>

#include "dataset/query/OrderedIndex.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Loader.h"

// An order that follows edits against the plain comparison of rows: what it packs of them, and the numbers that it
// gives to texts, never say otherwise.

namespace kiv::query {
namespace {

constexpr std::uint16_t kText = 1;

Dataset MakeLines() {
  return Dataset("linii", {{"id", FieldType::Int64, kKey},
                           {"t", FieldType::Text},
                           {"w", FieldType::WideText},
                           {"d", FieldType::Date},
                           {"m", FieldType::DateTime},
                           {"c", FieldType::Currency},
                           {"i", FieldType::Int16},
                           {"f", FieldType::Double}});
}

/// Values of lines, texts among them that fall between any two that are there.
class Lines {
 public:
  explicit Lines(std::uint32_t seed) : random_(seed) {}

  std::uint32_t Below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  Text NextText() {
    switch (Below(5)) {
      case 0:  // nearer and nearer to "a" from behind
        return Text(std::size_t{1} + Below(70), 'a') + "b";
      case 1:  // nearer and nearer to "Z" from before
        return "y" + Text(Below(70), 'z');
      case 2:  // one after another
        return "Partener " + std::to_string(1000 + next_++);
      default: {
        const char* const kEqualOrNearly[] = {"a",
                                              "A",
                                              "\x01"
                                              "a",
                                              "\xE2"
                                              "b",
                                              "ab",
                                              "Z",
                                              ""};
        return kEqualOrNearly[Below(std::size(kEqualOrNearly))];
      }
    }
  }
  std::int64_t NextNumber() {
    constexpr std::int64_t kNumbers[] = {std::numeric_limits<std::int64_t>::min(),
                                         -(std::int64_t{1} << 60U),
                                         -3,
                                         -2,
                                         -1,
                                         0,
                                         1,
                                         2,
                                         3,
                                         (std::int64_t{1} << 60U) + 1,
                                         std::int64_t{1} << 60U,
                                         std::numeric_limits<std::int64_t>::max()};
    return Below(3) == 0 ? std::int64_t{1} << Below(63) : kNumbers[Below(std::size(kNumbers))];
  }
  Value NextValue(std::size_t field) {
    if (Below(8) == 0) {
      return Null{};
    }
    switch (field) {
      case 1:
        return NextText();
      case 2:
        return WideText(Below(6), static_cast<char16_t>(0x100 + Below(3)));
      case 3:
        return DateTime(std::array{-693593.0, -1.0, 0.0, 45000.0, 45001.0, 2958465.0}[Below(6)]);
      case 4:
        return DateTime(std::array{-693593.0, -0.5, 0.0, 45000.25, 45000.5, 2958465.5}[Below(6)]);
      case 5:
        return Currency::FromRaw(NextNumber());
      case 6:
        return std::int64_t{Below(5)} - 2;
      default:
        return std::array{-1e300, -1.5, 0.0, 1e-300, 2.0}[Below(5)];
    }
  }
  Order NextOrder() {
    Order order;
    for (std::uint32_t left = 1 + Below(3); left > 0; --left) {
      const auto field = static_cast<std::uint16_t>(Below(2) == 0 ? kText : 1 + Below(7));
      order.push_back({field, static_cast<Collation>(Below(3)), Below(2) == 0, Below(2) == 0});
    }
    return order;
  }

 private:
  std::mt19937_64 random_;
  std::uint32_t next_ = 0;
};

std::vector<std::uint32_t> InOrder(const Dataset& dataset, const Order& order) {
  std::vector<std::uint32_t> rows;
  for (const RowId row : dataset.Rows()) {
    rows.push_back(static_cast<std::uint32_t>(row));
  }
  std::ranges::sort(rows, [&](std::uint32_t left, std::uint32_t right) {
    return CompareRows(dataset.GetContents(), order, left, right) < 0;
  });
  return rows;
}

/// Holds the rows of an index, and the places of some of them and of values, against rows that were sorted.
void Check(OrderedIndex& index, const Dataset& dataset, Lines& lines) {
  const Order& order = index.GetOrder();
  const std::vector<std::uint32_t> expected = InOrder(dataset, order);
  index.Repair();
  std::vector<std::uint32_t> rows;
  for (std::uint32_t position = 0; position < index.Count(); ++position) {
    rows.push_back(index.At(position));
  }
  ASSERT_EQ(rows, expected);
  for (std::uint32_t i = 0; i < 8 && !rows.empty(); ++i) {
    const std::uint32_t position = lines.Below(rows.size());
    ASSERT_EQ(index.PositionOf(rows[position]), position);
  }
  for (std::uint32_t i = 0; i < 8; ++i) {
    // The bytes of what is sought live as long as the values do.
    std::vector<Value> values;
    std::vector<store::Cell> cells;
    for (std::size_t place = 0; place <= i % order.size(); ++place) {
      values.push_back(lines.NextValue(order[place].field));
    }
    for (std::size_t place = 0; place < values.size(); ++place) {
      cells.push_back(store::MakeCell(dataset.GetSchema().Fields()[order[place].field], values[place], "test"));
    }
    const auto countOf = [&](bool withEqual) {
      return std::ranges::count_if(rows, [&](std::uint32_t row) {
        const int found = index.Compare(row, cells);
        return found < 0 || (found == 0 && withEqual);
      });
    };
    ASSERT_EQ(index.Search(cells, false), countOf(false));
    ASSERT_EQ(index.Search(cells, true), countOf(true));
  }
}

void Edit(Dataset& dataset, Lines& lines, std::int64_t key) {
  const std::vector<RowId> rows(dataset.Rows().begin(), dataset.Rows().end());
  const std::uint32_t what = lines.Below(20);
  if (what < 10 || rows.empty()) {
    std::vector<FieldValue> values{{"id", key}};
    std::vector<Value> held;
    for (std::size_t field = 1; field < dataset.GetSchema().Fields().size(); ++field) {
      held.push_back(lines.NextValue(field));
    }
    for (std::size_t i = 0; i < held.size(); ++i) {
      values.push_back({dataset.GetSchema().Fields()[i + 1].name, held[i]});
    }
    dataset.Insert(values);
  } else if (what < 15) {
    const std::size_t field = 1 + lines.Below(7);
    dataset.Set(rows[lines.Below(rows.size())], dataset.GetSchema().Fields()[field].name, lines.NextValue(field));
  } else if (what < 17) {
    dataset.Delete(rows[lines.Below(rows.size())]);
  } else if (what < 18) {
    // A text that nobody uses stays behind in the dictionary.
    const Text text = lines.NextText();
    EXPECT_THROW(dataset.Insert({{"id", dataset.GetInt64(rows[0], "id")}, {"t", text}}), Error);
  } else if (what < 19) {
    dataset.Changes().UndoLast();
  } else if (lines.Below(20) == 0) {
    dataset.Compact();
  }
}

TEST(OrderedIndex, OutlivesTheDictionaryOfItsTexts) {
  // One text more and as many rows, and the next new text does away with the dictionary, even that of a refused row.
  constexpr std::uint32_t kEntries = 65'537;
  Lines lines(1);
  for (const bool isRefused : {false, true}) {
    Dataset dataset = MakeLines();
    Loader loader(dataset);
    for (std::uint32_t i = 0; i < kEntries; ++i) {
      loader.Add({i, "t" + std::to_string(i * 7919 % kEntries), u"w", Null{}, Null{}, Null{}, Null{}, Null{}});
    }
    loader.Finish();
    const auto index = OrderedIndex::Of(dataset.GetStore(), {{kText}});
    index->Repair();
    const store::Texts& texts = dataset.GetContents().columns[kText].texts;
    ASSERT_TRUE(texts.HasDictionary());
    if (isRefused) {
      EXPECT_THROW(dataset.Insert({{"id", 0}, {"t", "t12"}}), Error);
      ASSERT_FALSE(texts.HasDictionary());
      EXPECT_FALSE(index->IsReady());
    }
    for (const char* const text : {"t3", "t30000a", "A"}) {
      dataset.Insert({{"id", -static_cast<std::int64_t>(dataset.RowCount())}, {"t", text}});
    }
    dataset.Delete(RowId{7});
    ASSERT_FALSE(texts.HasDictionary());
    ASSERT_NO_FATAL_FAILURE(Check(*index, dataset, lines));
  }
}

TEST(OrderedIndex, IsTheOrderOfItsRowsWhateverIsEdited) {
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    Lines lines(seed);
    Dataset dataset = MakeLines();
    std::int64_t key = 0;
    for (std::uint32_t left = seed % 3 * 40; left > 0; --left) {
      Edit(dataset, lines, ++key);
    }
    dataset.Changes().AcceptChanges();
    std::vector<std::shared_ptr<OrderedIndex>> indexes;
    for (int i = 0; i < 3; ++i) {
      indexes.push_back(OrderedIndex::Of(dataset.GetStore(), lines.NextOrder()));
      ASSERT_NO_FATAL_FAILURE(Check(*indexes.back(), dataset, lines)) << seed;
    }
    const Mark mark = dataset.Changes().SetMark();
    for (int step = 0; step < 300; ++step) {
      Edit(dataset, lines, ++key);
      if (step == 200 && seed % 4 == 0) {
        dataset.Changes().RollbackTo(mark);
      }
      if (step % 25 == 24) {
        for (const auto& index : indexes) {
          ASSERT_NO_FATAL_FAILURE(Check(*index, dataset, lines))
              << OrderText(dataset.GetContents(), index->GetOrder()) << ", seed " << seed << ", step " << step;
        }
      }
    }
  }
}

}  // namespace
}  // namespace kiv::query
