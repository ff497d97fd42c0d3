#include <map>
#include <optional>
#include <random>

#include "Expect.h"
#include "kivtools/dataset/Aggregate.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Lines() {
  return {"linii",
          {{"id", FieldType::AutoInc, kKey},
           {"g", FieldType::Text, 0, {}, {}, Collation::RomanianNoCase},
           {"h", FieldType::Int16},
           {"c", FieldType::Currency},
           {"f", FieldType::Double},
           {"i", FieldType::Int64},
           {"d", FieldType::Date}}};
}

struct Figure {
  TextView what;
  TextView groupBy;
};
constexpr Figure kFigures[] = {
    {"count(*)", ""},       {"count(*)", "g"},      {"count(c)", "h desc"}, {"sum(c)", ""},  {"sum(c * h)", "g, h"},
    {"sum(i)", "g binary"}, {"sum(f)", ""},         {"SUM(f / 3)", "h"},    {"avg(c)", "g"}, {"avg(i)", "h"},
    {"avg(f)", "g"},        {"min(c)", ""},         {"max(g)", ""},         {"min(g)", "h"}, {"max(d)", "g"},
    {" min ( f ) ", "d"},   {"sum(100 div h)", "g"}};

/// What an aggregate says, or why it says nothing.
std::pair<std::vector<AggregateGroup>, Text> Said(const Aggregate& aggregate) {
  try {
    return {aggregate.Groups(), ""};
  } catch (const Error& error) {
    return {{}, error.what()};
  }
}

void ExpectSame(const Figure& figure, const Aggregate& followed, const Aggregate& fresh, int step) {
  const auto left = Said(followed);
  const auto right = Said(fresh);
  ASSERT_EQ(left.second, right.second) << figure.what << " by " << figure.groupBy << " at " << step;
  ASSERT_EQ(left.first.size(), right.first.size()) << figure.what << " by " << figure.groupBy << " at " << step;
  for (std::size_t i = 0; i < left.first.size(); ++i) {
    ASSERT_EQ(left.first[i].key, right.first[i].key) << figure.what << " by " << figure.groupBy << " at " << step;
    ASSERT_EQ(left.first[i].value, right.first[i].value) << figure.what << " by " << figure.groupBy << " at " << step;
  }
}

class Editor {
 public:
  explicit Editor(Dataset& lines) : lines_(lines) {}

  void Edit() {
    ChangeLog changes = lines_.Changes();
    switch (Below(24)) {
      case 0:
        changes.UndoLast();
        mark_.reset();  // which may have ended
        break;
      case 1:
        mark_ = changes.SetMark();
        break;
      case 2:
        if (mark_) {
          changes.RollbackTo(*mark_);
        }
        break;
      case 3:
        if (const auto row = SomeRow(true)) {
          changes.RevertRow(*row);
        }
        break;
      case 4:
        if (Below(5) == 0) {
          mark_.reset();
          Below(2) == 0 ? changes.AcceptChanges() : changes.CancelChanges();
        }
        break;
      case 5:
        if (Below(5) == 0) {
          lines_.Compact();
        }
        break;
      case 6:
        if (Below(4) == 0) {
          Loader loader(lines_);
          loader.Add({next_++, G(), 1, 2_lei, 0.1, 7, Null{}});
          loader.Finish();
        }
        break;
      case 7:
      case 8:
      case 9:
        if (const auto row = SomeRow(false)) {
          lines_.Delete(*row);
        }
        break;
      case 10:
      case 11:
      case 12:
      case 13:
      case 14:
        lines_.Insert({{"g", G()}, {"h", H()}, {"c", C()}, {"f", F()}, {"i", I()}, {"d", D()}});
        break;
      default:
        if (const auto row = SomeRow(false)) {
          const FieldValue all[] = {{"g", G()}, {"h", H()}, {"c", C()}, {"f", F()}, {"i", I()}, {"d", D()}};
          lines_.Update(*row, {&all[Below(6)], 1});
        }
    }
  }

 private:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  ValueView OrNull(ValueView value) { return Below(6) == 0 ? ValueView() : value; }
  ValueView G() {
    static const StringList kNames = {"Alfa", "ALFA", "alfa", "Beta", ""};
    return OrNull(kNames[Below(5)]);
  }
  ValueView H() { return OrNull(Below(40) == 0 ? 0 : 1 + Below(3)); }
  ValueView C() { return OrNull(Currency::FromRaw(std::int64_t{Below(200'000)} - 100'000)); }
  ValueView F() { return OrNull(0.1 * Below(1000) - 20); }
  ValueView I() { return OrNull(static_cast<std::int64_t>(Below(9)) << 56U); }
  ValueView D() { return OrNull(DateTime(40'000 + Below(5))); }
  std::optional<RowId> SomeRow(bool orDeleted) {
    std::vector<RowId> rows;
    for (const RowId row : lines_.Rows()) {
      rows.push_back(row);
    }
    if (orDeleted) {
      for (const RowId row : lines_.Rows(RowState::Deleted)) {
        rows.push_back(row);
      }
    }
    return rows.empty() ? std::nullopt : std::optional(rows[Below(static_cast<std::uint32_t>(rows.size()))]);
  }

  Dataset& lines_;
  std::mt19937 random_{5};
  std::optional<Mark> mark_;
  std::int64_t next_ = 1000;
};

TEST(Aggregates, EqualFreshOnesAfterEveryEdit) {
  Dataset lines = Lines();
  std::vector<Aggregate> followed;
  for (const Figure& figure : kFigures) {
    followed.emplace_back(lines, figure.what, figure.groupBy);
  }
  Editor editor(lines);
  for (int step = 0; step < 3000; ++step) {
    editor.Edit();
    // Not each after each: what has not been asked for has to catch up.
    const std::size_t at = static_cast<std::size_t>(step) % std::size(kFigures);
    for (const std::size_t asked : {at, (at * 7 + 3) % std::size(kFigures)}) {
      const Figure& figure = kFigures[asked];
      ExpectSame(figure, followed[asked], Aggregate(lines, figure.what, figure.groupBy), step);
      if (HasFatalFailure()) {
        return;
      }
    }
  }
}

TEST(Aggregates, SayWhatALoopOverTheRowsSays) {
  Dataset lines = Lines();
  Editor editor(lines);
  for (int step = 0; step < 400; ++step) {
    editor.Edit();
  }
  std::map<std::string, std::pair<std::int64_t, std::int64_t>> byH;  // values and their sum
  double total = 0;
  std::optional<std::int64_t> least;
  for (const RowId row : lines.Rows()) {
    auto& [count, sum] = byH[ShownValue(FieldType::Int16, lines.Get(row, "h"))];
    if (!lines.IsNull(row, "c")) {
      ++count;
      sum += lines.GetCurrency(row, "c").Raw();
      least = std::min(least.value_or(lines.GetCurrency(row, "c").Raw()), lines.GetCurrency(row, "c").Raw());
    }
    total += lines.IsNull(row, "f") ? 0 : lines.GetDouble(row, "f");
  }
  const auto expect = [&](TextView what, auto valueOf) {
    const std::vector<AggregateGroup> groups = Aggregate(lines, what, "h").Groups();
    ASSERT_EQ(groups.size(), byH.size());
    for (const AggregateGroup& group : groups) {
      EXPECT_EQ(group.value, valueOf(byH.at(ShownValue(FieldType::Int16, group.key.at(0))))) << what;
      EXPECT_EQ(Aggregate(lines, what, "h").Get({group.key[0]}), group.value);
    }
  };
  expect("count(c)", [](const auto& of) { return Value(of.first); });
  expect("sum(c)", [](const auto& of) { return of.first == 0 ? Value() : Value(Currency::FromRaw(of.second)); });
  EXPECT_EQ(Aggregate(lines, "sum(f)").Get(), Value(total));
  EXPECT_EQ(Aggregate(lines, "min(c)").Get(), Value(Currency::FromRaw(*least)));
  EXPECT_EQ(Aggregate(lines, "count(*)").Get(), Value(static_cast<std::int64_t>(lines.RowCount())));
}

TEST(Aggregates, RoundMeansToEvenAndFindTheirGroups) {
  Dataset lines = Lines();
  EXPECT_EQ(Aggregate(lines, "sum(c)").Get(), Value());
  EXPECT_EQ(Aggregate(lines, "count(*)").Groups().at(0).value, Value(std::int64_t{0}));
  lines.Insert({{"g", "Alfa"}, {"c", 0.0001_lei}, {"i", 1}});
  lines.Insert({{"g", "ALFA"}, {"c", 0.0002_lei}, {"i", 2}});
  EXPECT_EQ(Aggregate(lines, "avg(c)", "g").Get({"alfa"}), Value(0.0002_lei));
  EXPECT_EQ(Aggregate(lines, "avg(i)").Get(), Value(1.5));
  EXPECT_EQ(Aggregate(lines, "avg(c * :n)", "", {{"n", std::int64_t{3}}}).Get(), Value(Currency::FromRaw(4)));
  const Aggregate names(lines, "min(g)");
  EXPECT_EQ(names.Get(), Value(Text("Alfa")));
  lines.Set(RowId{0}, "g", "Zeta");
  EXPECT_EQ(names.Get(), Value(Text("ALFA")));
  EXPECT_EQ(Aggregate(lines, "sum(c)", "g").Get({"nimeni"}), Value());
}

TEST(Aggregates, RefuseWhatIsNoFigure) {
  Dataset lines = Lines();
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  const struct {
    TextView what;
    std::size_t position;
    TextView message;
  } kCases[] = {
      {"suma(c)", 0, "\"suma\" nu este count, sum, avg, min sau max"},
      {"", 0, "\"\" nu este count, sum, avg, min sau max"},
      {"sum", 3, "dupa \"sum\" lipseste o expresie intre paranteze"},
      {"sum(c", 3, "dupa \"sum\" lipseste o expresie intre paranteze"},
      {"sum()", 4, "expresia se incheie prea devreme"},
      {"sum(*)", 4, "\"*\" nu are sens aici"},
      {"sum(c))", 5, "\")\" nu are sens aici"},
      {"sum(x)", 4, "campul \"x\" nu exista"},
      {"sum(g)", 4, "\"sum\" nu primeste o valoare de tip Text"},
      {"max(c > 1)", 4, "\"max\" nu primeste o valoare de tip Boolean"},
  };
  for (const auto& [what, position, message] : kCases) {
    ExpectError<FilterError>([&, what = what] { Aggregate(lines, what); },
                             "Filtru: " + Text(message) + " (pozitia " + std::to_string(position + 1) + ")");
  }
  const Aggregate sum(lines, "sum(i)");
  const Aggregate ratio(lines, "sum(1 / i)", "g");
  lines.Insert({{"i", kMost}});
  lines.Insert({{"i", 1}});
  ExpectError<Error>([&] { static_cast<void>(sum.Get()); }, "Dataset \"linii\": suma nu incape in tipul sau");
  lines.Insert({{"i", -1}, {"g", "a"}});
  EXPECT_EQ(sum.Get(), Value(kMost));
  lines.Insert({{"i", 0}});
  ExpectError<FilterError>([&] { static_cast<void>(ratio.Get({Null{}})); },
                           "Filtru: impartire la zero: \"1 / i\", randul 3");
  EXPECT_EQ(ratio.Get({"a"}), Value(-1.0));
  ExpectError<Error>([&] { static_cast<void>(sum.Get({1})); }, "Dataset \"linii\": gruparea are 0 campuri, nu 1");
}

TEST(Aggregates, SayThatTheirDatasetIsGone) {
  std::optional<Dataset> lines(Lines());
  const Aggregate count(*lines, "count(*)");
  Dataset moved = std::move(*lines);
  lines.reset();
  EXPECT_EQ(count.Get(), Value(std::int64_t{0}));
  moved.Insert({});
  EXPECT_EQ(count.Get(), Value(std::int64_t{1}));
  { const Dataset end = std::move(moved); }
  ExpectError<Error>([&] { static_cast<void>(count.Get()); }, "Aggregate: setul de date nu mai exista");
}

}  // namespace
}  // namespace kiv
