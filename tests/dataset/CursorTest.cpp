#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "Expect.h"
#include "kivtools/dataset/Cursor.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Partners() {
  Dataset dataset("parteneri", {{"id", FieldType::Int32, kKey},
                                {"nume", FieldType::Text, 20},
                                {"zi", FieldType::Date},
                                {"suma", FieldType::Currency, FieldFlags::None, 1_lei},
                                {"cod", FieldType::Text, 8, FieldFlags::None, {}, Collation::Binary},
                                {"obs", FieldType::Memo},
                                {"poza", FieldType::Blob},
                                {"lat", FieldType::WideText}});
  Loader loader(dataset);
  const ValueView null;
  const struct {
    int id;
    ValueView name;
    ValueView day;
    ValueView code;
  } kRows[] = {
      {10, "şapte"_ro, DateTime(3), "b"}, {11, "Alfa", DateTime(1), "B"}, {12, "alfa", DateTime(2), null},
      {13, null, DateTime(2), "a"},       {14, "zero", null, "a"},        {15, "sase", DateTime(3), "A"},
  };
  for (const auto& [id, name, day, code] : kRows) {
    loader.Add({id, name, day, Currency::FromRaw(id), code, null, null, null});
  }
  loader.Finish();
  return dataset;
}

/// The keys of the rows that the cursor sees, in its order.
std::string Seen(Cursor& cursor) {
  std::string keys;
  for (cursor.First(); !cursor.AtEnd(); cursor.Next()) {
    keys += std::to_string(cursor.GetInt64("id")) + " ";
  }
  return keys;
}

TEST(Cursor, OrdersByWhatTheTextSays) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  const struct {
    TextView order;
    TextView keys;
    TextView shown;
  } kCases[] = {
      {"", "10 11 12 13 14 15 ", ""},
      {" ID\tdesc ", "15 14 13 12 11 10 ", "id desc"},
      {"nume", "13 12 11 15 10 14 ", "nume"},
      {"nume nulls last, id", "12 11 15 10 14 13 ", "nume nulls last, id"},
      {"nume desc nulls first asc", "13 12 11 15 10 14 ", "nume"},
      {"nume nocase,zi", "13 11 12 15 10 14 ", "nume nocase, zi"},
      {"nume binary desc", "13 10 14 15 12 11 ", "nume binary desc"},
      {"cod", "12 15 11 13 14 10 ", "cod"},
      {"cod ro", "12 13 14 15 10 11 ", "cod ro"},
      {"zi desc, nume", "14 15 10 13 12 11 ", "zi desc, nume"},
      {"obs,lat,suma desc", "15 14 13 12 11 10 ", "obs, lat, suma desc"},
  };
  for (const auto& [order, keys, shown] : kCases) {
    cursor.OrderBy(order);
    EXPECT_EQ(cursor.Order(), shown);
    EXPECT_EQ(Seen(cursor), keys) << order;
    Text backwards;
    for (cursor.Last(); !cursor.AtStart(); cursor.Prior()) {
      backwards.insert(0, std::to_string(cursor.GetInt64("id")) + " ");
    }
    EXPECT_EQ(backwards, keys) << order;
  }
  cursor.OrderBy("id");
  const struct {
    TextView order;
    TextView message;
  } kRefused[] = {
      {"cine", R"(Dataset "parteneri": ordinea "cine": "cine" nu se intelege)"},
      {"id,", R"(Dataset "parteneri": ordinea "id,": se termina inainte de vreme)"},
      {"id nume", R"(Dataset "parteneri": ordinea "id nume": "nume" nu se intelege)"},
      {"id nocase", R"(Dataset "parteneri": ordinea "id nocase": "nocase" nu se intelege)"},
      {"id nulls", R"(Dataset "parteneri": ordinea "id nulls": se termina inainte de vreme)"},
      {"poza", R"(Dataset "parteneri": campul "poza" de tip Blob nu are o ordine)"},
  };
  for (const auto& [order, message] : kRefused) {
    ExpectError<Error>([&, wanted = order] { cursor.OrderBy(wanted); }, message);
    EXPECT_EQ(cursor.Order(), "id");
  }
}

TEST(Cursor, StandsBeforeOnAndBehindTheRows) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  EXPECT_TRUE(cursor.AtStart() && !cursor.AtEnd());
  ExpectError<Error>([&] { static_cast<void>(cursor.Row()); },
                     R"(Dataset "parteneri": cursorul nu sta pe niciun rand)");
  EXPECT_FALSE(cursor.Prior());
  int rows = 0;
  while (cursor.Next()) {
    EXPECT_EQ(cursor.Position(), static_cast<std::size_t>(rows++));
  }
  EXPECT_EQ(rows, 6);
  EXPECT_TRUE(cursor.AtEnd() && !cursor.AtStart());
  EXPECT_FALSE(cursor.Next());
  EXPECT_TRUE(cursor.Prior());
  EXPECT_EQ(cursor.GetInt64("id"), 15);
  cursor.GoTo(2);
  EXPECT_EQ(cursor.Row(), RowId{2});
  ExpectError<ListIndexError>([&] { cursor.GoTo(6); }, "Cursor: pozitia 6 nu exista");
  EXPECT_EQ(cursor.Row(), RowId{2});
  Dataset empty("goala", {{"a", FieldType::Int32}});
  Cursor none(empty);
  EXPECT_FALSE(none.First());
  EXPECT_TRUE(none.AtEnd());
  EXPECT_FALSE(none.Last());
  EXPECT_TRUE(none.AtStart());
}

TEST(Cursor, FindsRowsByTheOrderAndWithoutIt) {
  Dataset dataset = Partners();
  for (const TextView order : {"", "nume, zi", "zi, nume", "nume nocase", "nume desc"}) {
    Cursor cursor(dataset);
    cursor.OrderBy(order);
    EXPECT_TRUE(cursor.Locate({{"nume", "alfa"}})) << order;
    EXPECT_EQ(cursor.GetInt64("id"), 12) << order;
    EXPECT_FALSE(cursor.Locate({{"nume", "ALFA"}})) << order;
    EXPECT_EQ(cursor.GetInt64("id"), 12) << order;
    EXPECT_TRUE(cursor.Locate({{"zi", DateTime(3)}, {"nume", "sase"}})) << order;
    EXPECT_EQ(cursor.GetInt64("id"), 15) << order;
    EXPECT_TRUE(cursor.Locate({{"nume", Null{}}})) << order;
    EXPECT_EQ(cursor.GetInt64("id"), 13) << order;
  }
  Cursor cursor(dataset);
  cursor.OrderBy("nume, zi");
  EXPECT_TRUE(cursor.LocateNearest({"s"}));
  EXPECT_EQ(cursor.GetInt64("id"), 15);
  EXPECT_TRUE(cursor.LocateNearest({"alfa", DateTime(3)}));
  EXPECT_EQ(cursor.GetInt64("id"), 11);
  EXPECT_FALSE(cursor.LocateNearest({"zz"}));
  EXPECT_TRUE(cursor.AtEnd());
  ExpectError<Error>(
      [&] {
        cursor.LocateNearest({"a", DateTime(1), 1});
      },
      R"(Dataset "parteneri": cursorul are mai putine campuri in ordine decat valorile date)");
}

TEST(Cursor, SeesItsRangeOnly) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  cursor.OrderBy("nume");
  cursor.SetRange({"alfa"}, {"s"});
  EXPECT_EQ(Seen(cursor), "12 11 ");
  EXPECT_EQ(cursor.Count(), 2U);
  EXPECT_FALSE(cursor.Locate({{"nume", "zero"}}));
  EXPECT_FALSE(cursor.GoTo(RowId{4}));
  EXPECT_TRUE(cursor.LocateNearest({Null{}}));
  EXPECT_EQ(cursor.GetInt64("id"), 12);
  EXPECT_EQ(cursor.Position(), 0U);
  EXPECT_TRUE(cursor.Last());
  EXPECT_EQ(cursor.GetInt64("id"), 11);
  cursor.SetRange({}, {"alfa"});
  EXPECT_TRUE(cursor.AtStart()) << "its row is outside";
  EXPECT_EQ(Seen(cursor), "13 12 ");
  cursor.SetRange({"z"}, {"a"});
  EXPECT_EQ(Seen(cursor), "");
  cursor.ClearRange();
  EXPECT_EQ(cursor.Count(), 6U);
  cursor.OrderBy("nume desc nulls last");
  cursor.SetRange({"s"}, {"alfa"});
  EXPECT_EQ(Seen(cursor), "11 12 ");
  cursor.OrderBy("zi, nume");
  cursor.SetRange({DateTime(2)}, {DateTime(3), "sb"});
  EXPECT_EQ(Seen(cursor), "13 12 15 ");
}

TEST(Cursor, SeesTheRowsThatPassItsFilter) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  cursor.OrderBy("nume");
  cursor.First();
  cursor.Filter("zi >= :de_la and id <> 15", {{"de_la", DateTime(2)}});
  EXPECT_EQ(Seen(cursor), "13 12 10 ");
  cursor.Locate({{"id", 12}});
  dataset.Set(RowId{2}, "zi", Null{});
  EXPECT_EQ(cursor.GetInt64("id"), 10) << "its row does not pass any more";
  dataset.Set(RowId{1}, "zi", DateTime(7));
  EXPECT_EQ(Seen(cursor), "13 11 10 ");
  cursor.OrderBy("id desc");
  EXPECT_EQ(Seen(cursor), "13 11 10 ");
  cursor.SetRange({11}, {});
  Cursor clone = cursor;
  EXPECT_EQ(Seen(clone), "11 10 ");
  EXPECT_FALSE(cursor.GoTo(RowId{5}));
  cursor.ClearFilter();
  EXPECT_EQ(Seen(cursor), "11 10 ");
  EXPECT_THROW(cursor.Filter("zi >"), FilterError);
  EXPECT_EQ(Seen(cursor), "11 10 ");
}

TEST(Cursor, TellsThatItsFilterHasNoValueInARow) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  cursor.Filter("100 div (id - 20) < 5");
  cursor.First();
  EXPECT_EQ(cursor.Count(), 6U);
  dataset.Set(RowId{3}, "id", 20);
  EXPECT_THROW(cursor.Next(), FilterError);
  EXPECT_THROW(static_cast<void>(cursor.Count()), FilterError);
  EXPECT_THROW(Cursor(dataset).Filter("1 div (id - 20) = 0"), FilterError);
  dataset.Set(RowId{3}, "id", 21);
  EXPECT_EQ(Seen(cursor), "10 11 12 14 15 ");
  dataset.Changes().AcceptChanges();
  Loader loader(dataset);
  const ValueView null;
  loader.Add({20, "aaa", null, null, null, null, null, null});
  loader.Finish();
  EXPECT_THROW(cursor.First(), FilterError);
  dataset.Delete(RowId{6});
  EXPECT_EQ(Seen(cursor), "10 11 12 14 15 ");
}

TEST(Cursor, GoesOnWhenItsRowGoes) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  cursor.OrderBy("nume");
  cursor.SetRange({"a"}, {"t"});
  cursor.Locate({{"id", 11}});
  const Cursor clone = cursor;
  dataset.Delete(RowId{1});
  EXPECT_EQ(cursor.GetInt64("id"), 15);
  EXPECT_EQ(clone.GetInt64("id"), 15);
  dataset.Changes().UndoLast();
  EXPECT_EQ(cursor.GetInt64("id"), 15) << "it stays";
  dataset.Set(RowId{5}, "nume", "beta");
  EXPECT_EQ(cursor.GetInt64("id"), 15) << "its row has moved";
  EXPECT_EQ(cursor.Position(), 2U);
  dataset.Set(RowId{5}, "nume", "zeta");
  EXPECT_EQ(cursor.GetInt64("id"), 10) << "its row has left the range";
  cursor.Delete();
  EXPECT_TRUE(cursor.AtEnd());
  dataset.Changes().CancelChanges();
  cursor.Last();
  dataset.Delete(RowId{0});
  dataset.Changes().AcceptChanges();
  cursor.First();
  dataset.Compact();
  EXPECT_EQ(cursor.GetInt64("id"), 12);
  EXPECT_EQ(cursor.Row(), RowId{1});
  Loader loader(dataset);
  const ValueView null;
  loader.Add({20, "aaa", null, null, null, null, null, null});
  loader.Finish();
  EXPECT_EQ(cursor.Position(), 1U) << "a loaded row stands before it";
}

TEST(Cursor, BookmarksFindTheirRowByNumberOrKey) {
  std::optional<Dataset> dataset(Partners());
  Cursor cursor(*dataset);
  cursor.OrderBy("nume");
  cursor.Last();
  const CursorBookmark bookmark = cursor.Bookmark();
  EXPECT_EQ(bookmark.Key(), std::vector<Value>{std::int64_t{14}});
  cursor.First();
  dataset->Set(RowId{4}, "id", 99);
  EXPECT_TRUE(cursor.GoTo(bookmark));
  EXPECT_EQ(cursor.GetInt64("id"), 99);
  dataset->Changes().CancelChanges();
  dataset->Delete(RowId{0});
  dataset->Changes().AcceptChanges();
  dataset->Compact();
  cursor.First();
  EXPECT_TRUE(cursor.GoTo(bookmark));
  EXPECT_EQ(cursor.Row(), RowId{3});
  EXPECT_EQ(cursor.GetInt64("id"), 14);
  Dataset other = Partners();
  Cursor another(other);
  EXPECT_TRUE(another.GoTo(bookmark));
  other.Delete(RowId{4});
  EXPECT_FALSE(another.GoTo(bookmark));
  EXPECT_EQ(another.GetInt64("id"), 15);
  dataset.reset();
  ExpectError<Error>([&] { cursor.First(); }, "Cursor: setul de date nu mai exista");
  ExpectError<Error>([&] { another = cursor; }, "Cursor: setul de date nu mai exista");
}

TEST(Cursor, ProposesUntilItPosts) {
  Dataset dataset = Partners();
  Cursor cursor(dataset);
  cursor.OrderBy("nume");
  cursor.First();
  ExpectError<Error>([&] { cursor.Set("nume", "x"); },
                     R"(Dataset "parteneri": cursorul nu are niciun rand in modificare)");
  cursor.Edit();
  cursor.Set("nume", "beta");
  cursor.Set("nume", "teta");
  cursor.Set("obs", "m");
  EXPECT_EQ(cursor.GetText("nume"), "teta");
  EXPECT_EQ(cursor.GetBytes("obs").size(), 1U);
  EXPECT_EQ(cursor.Get("suma"), Value(Currency::FromRaw(13)));
  EXPECT_TRUE(dataset.IsNull(RowId{3}, "nume"));
  EXPECT_THROW(static_cast<void>(cursor.GetInt64("nume")), InvalidCast);
  EXPECT_THROW(cursor.Set("nume", 5), InvalidCast);
  for (const auto& move : std::initializer_list<void (*)(Cursor&)>{
           [](Cursor& c) { c.First(); }, [](Cursor& c) { c.Last(); }, [](Cursor& c) { c.Next(); },
           [](Cursor& c) { c.Prior(); }, [](Cursor& c) { c.GoTo(1); }, [](Cursor& c) { c.GoTo(RowId{1}); },
           [](Cursor& c) { c.OrderBy(""); }, [](Cursor& c) { c.Delete(); }, [](Cursor& c) { c.Edit(); },
           [](Cursor& c) { c.Insert(); }, [](Cursor& c) { c.ClearRange(); },
           [](Cursor& c) { c.LocateNearest({"a"}); }}) {
    ExpectError<Error>([&] { move(cursor); }, R"(Dataset "parteneri": cursorul are un rand in modificare)");
  }
  Cursor clone = cursor;
  EXPECT_FALSE(clone.IsEditing());
  cursor.Post();
  EXPECT_FALSE(cursor.IsEditing());
  EXPECT_EQ(dataset.GetText(RowId{3}, "nume"), "teta");
  EXPECT_EQ(cursor.Position(), 4U) << "the row has moved, the cursor with it";
  EXPECT_EQ(dataset.ChangeCount(), 1U);
  cursor.Edit();
  cursor.Set("id", 10);
  ExpectError<Error>([&] { cursor.Post(); }, R"(Dataset "parteneri": cheia 10 exista deja)");
  EXPECT_TRUE(cursor.IsEditing());
  cursor.Cancel();
  EXPECT_EQ(cursor.GetInt64("id"), 13);

  cursor.SetRange({"a"}, {"m"});
  for (const TextView name : {"gama", "omega"}) {
    cursor.Insert();
    EXPECT_EQ(cursor.GetCurrency("suma"), 1_lei);
    EXPECT_TRUE(cursor.IsNull("nume"));
    cursor.Set("id", name == "gama" ? 30 : 31);
    cursor.Set("nume", name);
    cursor.Post();
    EXPECT_EQ(cursor.GetText("nume"), "gama") << "where a new row is outside the cursor stays";
  }
  cursor.Edit();
  cursor.Set("nume", "delta");
  dataset.Delete(cursor.Row());
  ExpectError<Error>([&] { cursor.Post(); },
                     R"(Dataset "parteneri": cursorul are in modificare un rand care a fost sters)");
}

}  // namespace
}  // namespace kiv
