#include <string>

#include "Expect.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Lines() {
  return {"linii",
          {{"id", FieldType::AutoInc, kKey}, {"nume", FieldType::Text, 10, kRequired}, {"v", FieldType::Int16}}};
}

TEST(Loader, AddsUnmodifiedRowsAllAtOnce) {
  Dataset lines = Lines();
  lines.Insert({{"id", -50}, {"nume", "primul"}});
  {
    Loader loader(lines);
    for (int i = 0; i < 20'000; ++i) {
      loader.Add({i, "n" + std::to_string(i % 300), i % 4 == 0 ? ValueView(Null{}) : ValueView(i % 100)});
    }
    EXPECT_EQ(lines.RowCount(), 1U);
    ExpectError<Error>([&] { lines.Delete(RowId{0}); }, "Dataset \"linii\": nu se modifica in timpul incarcarii");
    ExpectError<Error>([&] { Loader second(lines); }, "Dataset \"linii\": nu se modifica in timpul incarcarii");
    loader.Finish();
    ExpectError<Error>([&] { loader.Add({1}); }, "Dataset \"linii\": incarcarea s-a incheiat");
  }
  EXPECT_EQ(lines.RowCount(), 20'001U);
  EXPECT_EQ(lines.Changes().Count(), 1U);
  for (int i = 0; i < 20'000; ++i) {
    const RowId row = lines.Find(i).value();
    ASSERT_EQ(lines.State(row), RowState::Unmodified);
    ASSERT_EQ(lines.GetText(row, "nume"), "n" + std::to_string(i % 300));
    ASSERT_EQ(lines.IsNull(row, "v"), i % 4 == 0);
    ASSERT_EQ(lines.GetInt64(row, "v"), i % 4 == 0 ? 0 : i % 100);
  }
  EXPECT_EQ(lines.GetInt64(lines.Insert({{"nume", "nou"}}), "id"), -51);
}

TEST(Loader, WithoutItsEndNothingIsAdded) {
  Dataset lines = Lines();
  {
    Loader loader(lines);
    loader.Add({-7, "a", Null{}});
    ExpectError<Error>([&] { loader.Add({2, Null{}, 1}); }, "Dataset \"linii\": campul \"nume\" trebuie completat");
    ExpectError<Error>([&] { loader.Add({2, "a"}); }, "Dataset \"linii\": un rand are 3 valori, nu 2");
    loader.Add({-7, "b", 5});
    ExpectError<Error>([&] { loader.Finish(); }, "Dataset \"linii\": cheia -7 exista deja");
  }
  EXPECT_EQ(lines.RowCount(), 0U);
  EXPECT_EQ(lines.Find(-7), std::nullopt);
  {
    Loader loader(lines);
    for (int i = 0; i < 20'000; ++i) {
      loader.Add({i, "n", Null{}});
    }
  }
  // What loaders and refused rows left behind is not seen in the rows that take its place.
  for (std::uint32_t i = 0; i < 9'000; ++i) {
    const RowId row = lines.Insert({{"nume", "c"}, {"v", 3}});
    ASSERT_EQ(row, RowId{i});
    ASSERT_EQ(lines.GetInt64(row, "id"), -1 - static_cast<std::int64_t>(i));
    ASSERT_EQ(lines.Get(row, "v"), Value(std::int64_t{3}));
    ASSERT_THROW(lines.Insert({{"id", -1}, {"nume", "d"}}), Error);
  }
}

TEST(Loader, TakesNoKeyThatARollBackWouldGiveAnotherRow) {
  Dataset lines = Lines();
  Loader first(lines);
  first.Add({1, "a", 1});
  first.Add({2, "b", 2});
  first.Finish();
  lines.Delete(RowId{0});
  lines.Set(RowId{1}, "id", 3);
  for (const int key : {1, 2}) {
    Loader loader(lines);
    loader.Add({key, "din nou", 1});
    ExpectError<Error>([&] { loader.Finish(); }, "Dataset \"linii\": cheia " + std::to_string(key) + " exista deja");
  }
  EXPECT_EQ(lines.Find(1), std::nullopt);
  EXPECT_EQ(lines.Find(3), RowId{1});
  lines.Changes().CancelChanges();
  EXPECT_EQ(lines.Find(1), RowId{0});
  EXPECT_EQ(lines.Find(2), RowId{1});
}

}  // namespace
}  // namespace kiv
