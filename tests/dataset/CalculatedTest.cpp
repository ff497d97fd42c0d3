#include <algorithm>
#include <optional>
#include <random>

#include "Allocations.h"
#include "Expect.h"
#include "kivtools/dataset/Aggregate.h"
#include "kivtools/dataset/Collation.h"
#include "kivtools/dataset/Cursor.h"
#include "kivtools/dataset/Loader.h"
#include "kivtools/dataset/Packet.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Partners() {
  Dataset partners("parteneri", {{"id", FieldType::Int32, kKey},
                                 {"nume", FieldType::Text, 20},
                                 {"cota", FieldType::Int16},
                                 {"sef", FieldType::Int64},
                                 {"cod", FieldType::AutoInc},
                                 {"logo", FieldType::Blob},
                                 {"larg", FieldType::WideText},
                                 {"guid", FieldType::Guid}});
  partners.Insert(
      {{"id", 1}, {"nume", "Alfa"}, {"cota", 10}, {"logo", Bytes{1, 2}}, {"larg", u"A"}, {"guid", Guid{7}}});
  partners.Insert({{"id", 2}, {"nume", "Beta"}, {"cota", 0}, {"sef", 1}});
  partners.Insert({{"id", 3}, {"sef", 9}});
  return partners;
}

Dataset Lines() {
  Dataset lines("linii", {{"id", FieldType::AutoInc, kKey},
                          {"partener_id", FieldType::Int16},
                          {"suma", FieldType::Currency},
                          {"data", FieldType::Date},
                          {"obs", FieldType::Text}});
  lines.Insert({{"partener_id", 1}, {"suma", 100_lei}, {"data", DateTime::Encode(2026, 1, 31)}, {"obs", "x"}});
  lines.Insert({{"partener_id", 2}, {"suma", 50_lei}});
  lines.Insert({{"partener_id", 7}});
  lines.Insert({{"suma", 1_lei}});
  return lines;
}

/// The columns that the tests are about: on their own, of one another, through the other dataset and through itself.
void AddColumns(Dataset& lines, Dataset& partners) {
  partners.Lookup("sef", partners, "id", "nume", "nume_sef");
  partners.Calculate("eticheta", "nume || '/' || Coalesce(nume_sef, '-')");
  lines.Calculate("tva", "suma * 0.21");
  lines.Calculate("total", "suma + tva");
  lines.Lookup("partener_id", partners, "id", "nume");
  lines.Lookup("partener_id", partners, "id", "cota");
  lines.Lookup("partener_id", partners, "id", "eticheta");
  lines.Calculate("parte", "suma / cota");
  lines.Calculate("este_mare", "total > 100 or nume = 'beta'");
}

TEST(Calculated, ColumnsReadLikeFieldsOfTheirType) {
  Dataset partners = Partners();
  Dataset lines = Lines();
  AddColumns(lines, partners);
  const struct {
    TextView field;
    FieldType type;
    std::vector<Value> values;
  } kCases[] = {
      {"tva", FieldType::Currency, {21_lei, 10.5_lei, Null{}, 0.21_lei}},
      {"total", FieldType::Currency, {121_lei, 60.5_lei, Null{}, 1.21_lei}},
      {"nume", FieldType::Text, {Text("Alfa"), Text("Beta"), Null{}, Null{}}},
      {"cota", FieldType::Int16, {std::int64_t{10}, std::int64_t{0}, Null{}, Null{}}},
      {"ETICHETA", FieldType::Text, {Text("Alfa/-"), Text("Beta/Alfa"), Null{}, Null{}}},
      {"este_mare", FieldType::Boolean, {true, false, Null{}, Null{}}},
  };
  for (const auto& [name, type, values] : kCases) {
    const FieldRef field = lines.Field(name);
    EXPECT_EQ(lines.CalculatedFields()[field.Index() - 5].type, type) << name;
    for (std::uint32_t row = 0; row < 4; ++row) {
      EXPECT_EQ(lines.Get(RowId{row}, field), values[row]) << name << " " << row;
      EXPECT_EQ(lines.IsNull(RowId{row}, name), std::holds_alternative<Null>(values[row])) << name << " " << row;
    }
  }
  EXPECT_EQ(lines.GetCurrency(RowId{1}, "total"), 60.5_lei);
  EXPECT_EQ(lines.GetCurrency(RowId{2}, "total"), Currency());
  EXPECT_EQ(lines.GetInt64(RowId{0}, "cota"), 10);
  EXPECT_TRUE(lines.GetBool(RowId{0}, "este_mare"));
  EXPECT_EQ(lines.GetText(RowId{1}, "eticheta"), "Beta/Alfa");
  EXPECT_EQ(lines.GetText(RowId{3}, "eticheta"), "");
  for (const TextView name : {"cod", "logo", "larg", "guid"}) {
    lines.Lookup("partener_id", partners, "id", name);
  }
  lines.Calculate("termen", "data + 30");
  EXPECT_EQ(lines.GetInt64(RowId{1}, "cod"), -2);
  EXPECT_EQ(lines.CalculatedFields()[7].type, FieldType::Int64) << "nothing is numbered by it";
  EXPECT_EQ(lines.GetBytes(RowId{0}, "logo").size(), 2U);
  EXPECT_EQ(lines.GetWideText(RowId{0}, "larg"), u"A");
  EXPECT_EQ(lines.GetGuid(RowId{0}, "guid"), Guid{7});
  EXPECT_EQ(lines.GetGuid(RowId{1}, "guid"), Guid{});
  EXPECT_EQ(lines.GetDateTime(RowId{0}, "termen"), DateTime::Encode(2026, 3, 2));
}

TEST(Calculated, ColumnsAreNeitherSetNorSavedNorCopied) {
  Dataset partners = Partners();
  Dataset lines = Lines();
  AddColumns(lines, partners);
  const FieldRef tva = lines.Field("tva");
  const auto refused = [](TextView name) {
    return "Dataset \"linii\": campul \"" + Text(name) + "\" este calculat si nu se modifica";
  };
  ExpectError<Error>([&] { lines.Set(RowId{0}, tva, 1_lei); }, refused("tva"));
  ExpectError<Error>([&] { lines.Insert({{"Nume", "x"}}); }, refused("nume"));
  Cursor cursor(lines);
  cursor.First();
  cursor.Edit();
  ExpectError<Error>([&] { cursor.Set("total", 1_lei); }, refused("total"));
  EXPECT_THROW(static_cast<void>(lines.GetText(RowId{0}, tva)), InvalidCast);
  EXPECT_THROW(static_cast<void>(partners.GetCurrency(RowId{0}, tva)), Error) << "it is another dataset's";
  EXPECT_THROW(static_cast<void>(lines.FieldAt(12)), ListIndexError);
  const Snapshot snapshot = lines.TakeSnapshot();
  EXPECT_THROW(static_cast<void>(snapshot.Get(RowId{0}, tva)), Error);
  EXPECT_THROW(static_cast<void>(snapshot.Field("tva")), Error);
  EXPECT_EQ(lines.GetSchema().Fields().size(), 5U);
  EXPECT_EQ(lines.Changes().MakeDelta().GetSchema().Fields().size(), 5U);
  lines.Changes().AcceptChanges();
  lines.Delete(RowId{0});
  lines.Changes().AcceptChanges();
  lines.Compact();
  EXPECT_EQ(lines.GetCurrency(RowId{0}, tva), 10.5_lei) << "they stay when rows are numbered anew";
  lines.Set(RowId{0}, "suma", 2_lei);
  EXPECT_EQ(lines.Original(RowId{0}, tva), Value(10.5_lei));
  EXPECT_EQ(lines.Get(RowId{0}, tva), Value(0.42_lei));
}

TEST(Calculated, ColumnsAreRefusedByNameAndPlace) {
  Dataset partners = Partners();
  Dataset lines = Lines();
  AddColumns(lines, partners);
  const struct {
    TextView name;
    TextView expression;
    TextView message;
  } kCases[] = {
      {"x", "suma + lipsa", "Filtru: campul \"lipsa\" nu exista (pozitia 8)"},
      {"x", "suma + 2 * X", "Filtru: campul \"X\" s-ar calcula din el insusi (pozitia 12)"},
      {"x", "tva + obs", "Filtru: operatia + nu primeste o valoare de tip Text: \"obs\" (pozitia 7)"},
      {"tva", "suma", "Dataset \"linii\": campul calculat \"tva\" exista deja"},
      {"Suma", "suma", "Dataset \"linii\": campul calculat \"Suma\" exista deja"},
      {"2x", "suma", "Dataset \"linii\": campul calculat \"2x\" nu are un nume permis"},
  };
  for (const auto& [name, expression, message] : kCases) {
    try {
      lines.Calculate(name, expression);
      ADD_FAILURE() << expression;
    } catch (const Error& error) {
      EXPECT_EQ(TextView(error.what()), message);
    }
  }
  const struct {
    TextView field;
    TextView key;
    TextView wanted;
    TextView name;
    TextView message;
  } kLookups[] = {
      {"lipsa", "id", "nume", "x", "Dataset \"linii\": campul \"lipsa\" nu exista"},
      {"partener_id", "lipsa", "nume", "x", "Dataset \"linii\": Lookup: campul \"lipsa\" nu exista in \"parteneri\""},
      {"partener_id", "id", "lipsa", "x", "Dataset \"linii\": Lookup: campul \"lipsa\" nu exista in \"parteneri\""},
      {"partener_id", "nume", "cota", "x",
       "Dataset \"linii\": Lookup: campul \"nume\" nu este cheia din \"parteneri\""},
      {"obs", "id", "nume", "x",
       "Dataset \"linii\": Lookup: campul \"obs\" de tip Text nu se cauta in unul de tip Int32"},
      {"partener_id", "id", "nume", "", "Dataset \"linii\": campul calculat \"nume\" exista deja"},
  };
  for (const auto& [field, key, wanted, name, message] : kLookups) {
    ExpectError<Error>([&, &field = field, &key = key, &wanted = wanted,
                        &name = name] { lines.Lookup(field, partners, key, wanted, name); },
                       message);
  }
  EXPECT_EQ(lines.CalculatedFields().size(), 7U) << "nothing has changed";
  // What a column brings with it stands behind what the expression has already.
  lines.Calculate("cu_alfa", "nume like 'Al%'");
  for (const TextView text : {"suma > 1 and tva = 21", "obs like 'x%' and cu_alfa", "cota = 10 and nume = 'Alfa'",
                              "1 = 2 or total = 121", "cota = 10 and eticheta like '%/-' and cu_alfa"}) {
    EXPECT_EQ(Filter(lines, text).Select(), std::vector<RowId>{RowId{0}}) << text;
  }
  ExpectError<FilterError>([&] { static_cast<void>(lines.Get(RowId{1}, "parte")); },
                           "Filtru: impartire la zero: \"suma / cota\", randul 1");
  ExpectError<FilterError>([&] { static_cast<void>(Filter(lines, "1 < parte").Count()); },
                           "Filtru: impartire la zero: \"parte\", randul 1");
}

TEST(Calculated, ColumnsThatGoThroughTooManyAreRefused) {
  Dataset numbers("numere", {{"id", FieldType::Int32, kKey}});
  numbers.Insert({{"id", 1}});
  Text last = "id";
  for (int i = 0; i < 64; ++i) {
    const Text next = "n" + std::to_string(i);
    numbers.Lookup("id", numbers, "id", last, next);
    last = next;
  }
  EXPECT_EQ(numbers.GetInt64(RowId{0}, last), 1);
  ExpectError<Error>([&] { numbers.Lookup("id", numbers, "id", last, "n64"); },
                     "Dataset \"numere\": Lookup: \"n63\" cauta prin prea multe seturi de date");
  last = "id";
  for (int i = 0; i < 11; ++i) {
    const Text next = "d" + std::to_string(i);
    numbers.Calculate(next, last + " + " + last);
    last = next;
  }
  EXPECT_EQ(numbers.GetInt64(RowId{0}, last), 2048);
  ExpectError<FilterError>([&] { numbers.Calculate("d11", last + " + " + last); },
                           "Filtru: expresia are peste 4096 de parti (pozitia 7)");
  numbers.Lookup("id", numbers, "id", last, "e0");
  ExpectError<Error>([&] { numbers.Lookup("id", numbers, "id", "e0", "e1"); },
                     "Dataset \"numere\": Lookup: \"e0\" cauta prin prea multe seturi de date");
}

TEST(Calculated, ColumnsOutliveWhatTheyLookUp) {
  std::optional<Dataset> partners(Partners());
  Dataset lines = Lines();
  AddColumns(lines, *partners);
  Cursor cursor(lines);
  cursor.OrderBy("nume desc");
  Cursor filtered(lines);
  filtered.Filter("cota >= 0");
  const Aggregate count(lines, "count(eticheta)");
  EXPECT_EQ(cursor.Count() + filtered.Count(), 6U);
  EXPECT_EQ(count.Get(), Value(std::int64_t{2}));
  {
    const Dataset moved = std::move(*partners);
    EXPECT_EQ(lines.GetText(RowId{0}, "nume"), "Alfa") << "the dataset has only moved";
  }
  partners.reset();
  constexpr TextView kGone = "Filtru: setul de date in care se cauta nu mai exista: ";
  ExpectError<FilterError>([&] { static_cast<void>(lines.GetText(RowId{0}, "nume")); },
                           Text(kGone) + "\"nume\", randul 0");
  ExpectError<FilterError>([&] { cursor.First(); }, Text(kGone) + "\"nume\", randul 0");
  ExpectError<FilterError>([&] { filtered.First(); }, Text(kGone) + "\"cota\", randul 0");
  ExpectError<FilterError>([&] { static_cast<void>(count.Get()); }, Text(kGone) + "\"eticheta\", randul 0");
  EXPECT_TRUE(lines.IsNull(RowId{3}, "nume")) << "nothing is looked up";
  lines.Set(RowId{0}, "partener_id", Null{});
  lines.Delete(RowId{2});
  lines.Delete(RowId{1});
  EXPECT_EQ(cursor.Count(), 2U);
}

TEST(Calculated, ColumnsAreAddedUpAndFollowWhatTheyReachThroughOthers) {
  Dataset towns("orase", {{"id", FieldType::Int32, kKey}, {"nume", FieldType::Text, 20}});
  towns.Insert({{"id", 1}, {"nume", "Cluj"}});
  Dataset partners = Partners();
  Dataset lines = Lines();
  partners.Lookup("id", towns, "id", "nume", "oras");
  lines.Lookup("partener_id", partners, "id", "oras");
  lines.Calculate("tva", "suma * 0.21");
  lines.Calculate("pondere", "suma * 0.12345");
  Cursor cursor(lines);
  cursor.OrderBy("oras desc nulls last");
  const Aggregate byTown(lines, "count(*)", "oras");
  const Aggregate lastOfTown(lines, "max(oras)", "oras");
  cursor.First();
  EXPECT_EQ(cursor.GetText("oras"), "Cluj");
  EXPECT_EQ(byTown.Get({"Cluj"}), Value(std::int64_t{1}));
  EXPECT_EQ(lastOfTown.Get({"Cluj"}), Value("Cluj"));
  towns.Insert({{"id", 2}, {"nume", "Dej"}});
  cursor.First();
  EXPECT_EQ(cursor.GetText("oras"), "Dej");
  towns.Set(RowId{0}, "nume", "Dej");
  EXPECT_EQ(byTown.Get({"Dej"}), Value(std::int64_t{2}));
  EXPECT_EQ(lastOfTown.Get({"Cluj"}), Value());
  EXPECT_EQ(Filter(lines, "oras = 'Dej'").Sum("tva"), Value(31.5_lei));
  EXPECT_EQ(Filter(lines, "partener_id = 7").Sum("tva"), Value());
  EXPECT_EQ(Filter(lines, "oras = 'Dej'").Sum("pondere"), Value(100 * 0.12345 + 50 * 0.12345));
  EXPECT_THROW(static_cast<void>(Filter(lines, "true").Sum("oras")), InvalidCast);
  Cursor heads(partners);
  partners.Lookup("sef", partners, "id", "nume", "nume_sef");
  heads.OrderBy("nume_sef desc nulls last, id");
  EXPECT_TRUE(heads.First());
  EXPECT_EQ(heads.GetInt64("id"), 2);
  partners.Update(RowId{0}, {{"id", 9}});
  EXPECT_TRUE(heads.First());
  EXPECT_EQ(heads.GetInt64("id"), 3) << "its head is there now, that of the other has gone";
}

TEST(Calculated, ColumnsOfACursorFollowItsEdit) {
  Dataset partners = Partners();
  Dataset lines = Lines();
  AddColumns(lines, partners);
  Cursor cursor(lines);
  cursor.OrderBy("nume, total desc");
  EXPECT_TRUE(cursor.Locate({{"nume", "Beta"}}));
  EXPECT_EQ(cursor.Row(), RowId{1});
  EXPECT_TRUE(cursor.Locate({{"total", 121_lei}}));
  cursor.Edit();
  cursor.Set("partener_id", 2);
  cursor.Set("suma", 200_lei);
  EXPECT_EQ(cursor.GetCurrency("total"), 242_lei);
  EXPECT_EQ(cursor.GetText("eticheta"), "Beta/Alfa");
  EXPECT_THROW(static_cast<void>(cursor.GetText("total")), InvalidCast);
  ExpectError<FilterError>([&] { static_cast<void>(cursor.Get("parte")); },
                           "Filtru: impartire la zero: \"suma / cota\", randul 0");
  EXPECT_EQ(lines.GetCurrency(RowId{0}, "total"), 121_lei);
  cursor.Cancel();
  cursor.Insert();
  EXPECT_TRUE(cursor.IsNull("tva"));
  cursor.Set("suma", 10_lei);
  EXPECT_EQ(cursor.Get("tva"), Value(2.1_lei));
  cursor.Cancel();
  // The other dataset's edits move rows, and the cursor goes on where its row was.
  cursor.Filter("nume >= 'A'");
  cursor.Locate({{"nume", "Alfa"}});
  partners.Set(RowId{0}, "nume", Null{});
  EXPECT_EQ(cursor.Count(), 1U);
  EXPECT_EQ(cursor.GetText("nume"), "Beta");
  partners.Delete(RowId{1});
  EXPECT_FALSE(cursor.Next());
  EXPECT_EQ(cursor.Count(), 0U);
  partners.Changes().CancelChanges();
  EXPECT_EQ(cursor.Count(), 0U) << "they were never accepted";
}

/// Two datasets under random edits.
class Pair {
 public:
  Pair() : partners(Partners()), lines(Lines()) {
    partners.Changes().AcceptChanges();
    lines.Changes().AcceptChanges();
    AddColumns(lines, partners);
  }

  void Edit() {
    Dataset& chosen = Below(3) == 0 ? partners : lines;
    ChangeLog changes = chosen.Changes();
    const auto row = SomeRow(chosen);
    switch (Below(16)) {
      case 0:
        changes.UndoLast();
        break;
      case 1:
        if (row) {
          try {
            changes.RevertRow(*row);
          } catch (const Error&) {
            break;  // the key that it had is another's now
          }
        }
        break;
      case 2:
        if (row) {
          chosen.Delete(*row);
        }
        break;
      case 3:
        if (Below(8) == 0) {
          Below(2) == 0 ? changes.CancelChanges() : chosen.Compact();
        }
        break;
      case 4:
        if (Below(8) == 0) {
          Load(chosen);
        }
        break;
      case 5:
      case 6:
      case 7:
      case 8:
        Insert(chosen);
        break;
      default:
        if (row && &chosen == &lines) {
          const FieldValue all[] = {{"suma", Amount()}, {"partener_id", Number(12)}, {"obs", Name()}};
          lines.Update(*row, {&all[Below(3)], 1});
        } else if (row) {
          next_ += 5;
          const bool isFree = !partners.Find(next_ % 12);
          const FieldValue all[] = {{"nume", Name()}, {"cota", Number(9)}, {"sef", Number(12)}, {"id", next_ % 12}};
          partners.Update(*row, {&all[Below(isFree ? 4 : 3)], 1});
        }
    }
  }

  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

  Dataset partners;
  Dataset lines;

 private:
  void Insert(Dataset& into) {
    if (&into == &lines) {
      lines.Insert({{"partener_id", Number(12)}, {"suma", Amount()}});
    } else if (partners.RowCount() < 10 && !partners.Find(next_ % 12)) {
      partners.Insert({{"id", next_ % 12}, {"nume", Name()}, {"cota", Number(9)}, {"sef", Number(12)}});
    }
    next_ += 5;
  }
  void Load(Dataset& into) {
    Loader loader(into);
    const ValueView null;
    if (&into == &lines) {
      loader.Add({next_ + 100, Number(12), Amount(), null, null});
    } else {
      loader.Add({next_ + 100, Name(), 3, Number(12), next_, null, null, null});
    }
    ++next_;
    loader.Finish();
  }
  ValueView Number(std::uint32_t below) { return Below(6) == 0 ? ValueView() : ValueView(1 + Below(below)); }
  ValueView Amount() { return Below(6) == 0 ? ValueView() : ValueView(Currency::FromRaw(std::int64_t{Below(999)})); }
  ValueView Name() {
    static const StringList kNames = {"Alfa", "alfa", "Beta", "gama", ""};
    return Below(6) == 0 ? ValueView() : ValueView(kNames[Below(5)]);
  }
  std::optional<RowId> SomeRow(const Dataset& of) {
    const std::vector<RowId> rows(of.Rows().begin(), of.Rows().end());
    return rows.empty() ? std::nullopt : std::optional(rows[Below(static_cast<std::uint32_t>(rows.size()))]);
  }

  std::mt19937 random_{11};
  std::int64_t next_ = 1;
};

/// What the columns come to for somebody who reads the fields alone.
struct Direct {
  std::optional<Text> nume;
  std::optional<Currency> tva;
  std::optional<Text> label;

  Direct(const Pair& pair, RowId row) {
    if (!pair.lines.IsNull(row, "suma")) {
      // Halves to even.
      const std::int64_t hundredths = pair.lines.GetCurrency(row, "suma").Raw() * 21;
      const std::int64_t below = hundredths / 100;
      const std::int64_t rest = hundredths % 100;
      tva = Currency::FromRaw(below + (rest > 50 || (rest == 50 && below % 2 != 0) ? 1 : 0));
    }
    const auto nameOf = [&](const Dataset& from, RowId at, TextView field) -> std::optional<RowId> {
      return from.IsNull(at, field) ? std::nullopt : pair.partners.Find(from.GetInt64(at, field));
    };
    const auto partner = nameOf(pair.lines, row, "partener_id");
    if (partner && !pair.partners.IsNull(*partner, "nume")) {
      nume = Text(pair.partners.GetText(*partner, "nume"));
      const auto head = nameOf(pair.partners, *partner, "sef");
      const bool hasHead = head && !pair.partners.IsNull(*head, "nume");
      label = *nume + "/" + (hasHead ? Text(pair.partners.GetText(*head, "nume")) : Text("-"));
    }
  }
};

template <class Held>
Value ValueOf(const std::optional<Held>& held) {
  return held ? Value(*held) : Value();
}

TEST(Calculated, ColumnsEqualADirectComputationAfterEveryEdit) {
  Pair pair;
  Cursor ordered(pair.lines);
  ordered.OrderBy("nume desc, tva, eticheta binary");
  Cursor labelled(pair.lines);
  labelled.OrderBy("eticheta binary");
  Cursor filtered(pair.lines);
  filtered.OrderBy("eticheta nocase nulls last");
  filtered.Filter("tva > 0.0050 and nume = 'Alfa'");
  const Aggregate sums(pair.lines, "sum(tva)", "nume");
  const Aggregate labels(pair.partners, "count(nume_sef)", "nume_sef");
  for (int step = 0; step < 4000; ++step) {
    pair.Edit();
    std::vector<RowId> rows;
    std::vector<RowId> passing;
    for (const RowId row : pair.lines.Rows()) {
      const Direct direct(pair, row);
      ASSERT_EQ(pair.lines.Get(row, "nume"), ValueOf(direct.nume)) << step;
      ASSERT_EQ(pair.lines.Get(row, "tva"), ValueOf(direct.tva)) << step;
      ASSERT_EQ(pair.lines.Get(row, "eticheta"), ValueOf(direct.label)) << step;
      rows.push_back(row);
      if (direct.tva > Currency::FromRaw(50) && direct.nume == Text("Alfa")) {
        passing.push_back(row);
      }
    }
    if (step % 3 == 0) {
      continue;  // what has not been asked for has to catch up
    }
    std::ranges::sort(rows, [&](RowId left, RowId right) {
      const Direct one(pair, left);
      const Direct other(pair, right);
      if (one.nume.has_value() != other.nume.has_value()) {
        return !one.nume.has_value();  // nulls first
      }
      const int names = one.nume ? CompareTexts(*one.nume, *other.nume, Collation::Romanian) : 0;
      return names != 0                 ? names > 0
             : one.tva != other.tva     ? one.tva < other.tva
             : one.label != other.label ? one.label < other.label
                                        : left < right;
    });
    std::vector<RowId> walked;
    for (ordered.First(); !ordered.AtEnd(); ordered.Next()) {
      walked.push_back(ordered.Row());
    }
    ASSERT_EQ(walked, rows) << step;
    std::vector<std::optional<Text>> labelsInOrder;
    for (labelled.First(); !labelled.AtEnd(); labelled.Next()) {
      labelsInOrder.push_back(Direct(pair, labelled.Row()).label);
    }
    ASSERT_EQ(labelsInOrder.size(), rows.size()) << step;
    ASSERT_TRUE(std::ranges::is_sorted(labelsInOrder)) << step;
    walked.clear();
    for (filtered.First(); !filtered.AtEnd(); filtered.Next()) {
      walked.push_back(filtered.Row());
    }
    std::ranges::sort(walked);
    ASSERT_EQ(walked, passing) << step;
    ASSERT_EQ(Filter(pair.lines, "tva > 0.0050 and nume = 'Alfa'").Select(), passing) << step;
    for (const auto& [followed, fresh] :
         {std::pair(&sums, Aggregate(pair.lines, "sum(tva)", "nume").Groups()),
          std::pair(&labels, Aggregate(pair.partners, "count(nume_sef)", "nume_sef").Groups())}) {
      const auto groups = followed->Groups();
      ASSERT_EQ(groups.size(), fresh.size()) << step;
      for (std::size_t i = 0; i < groups.size(); ++i) {
        ASSERT_EQ(groups[i].key, fresh[i].key) << step;
        ASSERT_EQ(groups[i].value, fresh[i].value) << step;
      }
    }
  }
}

TEST(Calculated, ColumnsBearFailedAllocations) {
  const struct {
    const char* name;
    void (*act)(Pair&);
  } kActs[] = {
      {"calculate", [](Pair& pair) { pair.lines.Calculate("nou", "eticheta || obs || 'un text mai lung de atat'"); }},
      {"look up", [](Pair& pair) { pair.lines.Lookup("partener_id", pair.partners, "id", "eticheta", "nou"); }},
      {"read",
       [](Pair& pair) {
         static_cast<void>(pair.lines.Get(RowId{0}, "eticheta"));
         static_cast<void>(pair.lines.GetText(RowId{1}, "eticheta"));
       }},
      {"edit", [](Pair& pair) { pair.lines.Set(RowId{0}, "partener_id", 2); }},
      {"edit of the other", [](Pair& pair) { pair.partners.Set(RowId{0}, "nume", "Un nume chiar lung"); }},
      {"filter", [](Pair& pair) { Cursor(pair.lines).Filter("eticheta > 'B'"); }},
      {"group", [](Pair& pair) { static_cast<void>(Aggregate(pair.lines, "max(eticheta)", "nume").Groups()); }},
  };
  for (const auto& [name, act] : kActs) {
    bool hasFailed = true;
    for (std::uint64_t failing = 0; hasFailed; ++failing) {
      ASSERT_LT(failing, 10'000U) << name;
      Pair pair;
      Cursor cursor(pair.lines);
      cursor.OrderBy("eticheta desc, tva");
      cursor.First();
      const Aggregate count(pair.lines, "count(eticheta)", "eticheta");
      static_cast<void>(count.Groups());
      Allocations::FailFrom(failing);
      try {
        act(pair);
        hasFailed = Allocations::Stop();
      } catch (const std::bad_alloc&) {
        ASSERT_TRUE(Allocations::Stop());
        act(pair);
      }
      Cursor fresh(pair.lines);
      fresh.OrderBy("eticheta desc, tva, id");
      for (cursor.First(), fresh.First(); !fresh.AtEnd(); cursor.Next(), fresh.Next()) {
        ASSERT_EQ(cursor.Get("eticheta"), fresh.Get("eticheta")) << name << " " << failing;
      }
      ASSERT_TRUE(cursor.AtEnd());
      ASSERT_EQ(count.Groups().size(), Aggregate(pair.lines, "count(*)", "eticheta").Groups().size()) << name;
    }
  }
}

}  // namespace
}  // namespace kiv
