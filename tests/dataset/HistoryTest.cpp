#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "BlockCopy.h"
#include "Expect.h"
#include "Show.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {
namespace {

using namespace kiv::literals;

/// Three rows as if loaded: 1 "Alfa" 10, 2 "Beta" 20, 3 "Gama" null.
Dataset Loaded() {
  Dataset lines("linii", {{"id", FieldType::AutoInc, kKey},
                          {"partener", FieldType::Text, 40, kRequired},
                          {"suma", FieldType::Currency},
                          {"nota", FieldType::Int32, kNoCheck},
                          {"stampila", FieldType::Int32, kReadOnly}});
  lines.Insert({{"id", 1}, {"partener", "Alfa"}, {"suma", 10_lei}});
  lines.Insert({{"id", 2}, {"partener", "Beta"}, {"suma", 20_lei}});
  lines.Insert({{"id", 3}, {"partener", "Gama"}});
  lines.Changes().AcceptChanges();
  return lines;
}

constexpr RowId kAlfa{0};
constexpr RowId kBeta{1};
constexpr RowId kGama{2};

TEST(History, AcceptedRowsAreTheOriginals) {
  Dataset lines = Loaded();
  EXPECT_EQ(lines.Changes().Count(), 0U);
  EXPECT_EQ(lines.State(kAlfa), RowState::Unmodified);
  lines.Delete(kBeta);
  lines.Set(kAlfa, "suma", 11_lei);
  EXPECT_EQ(lines.CountOf(RowState::Deleted), 1U);
  EXPECT_EQ(lines.Original(kAlfa, "suma"), Value(10_lei));
  EXPECT_EQ(lines.Original(kBeta, "suma"), Value(20_lei));
  ExpectError<Error>([&] { static_cast<void>(lines.Get(kBeta, "suma")); }, "Dataset \"linii\": randul 1 este sters");
  lines.Changes().AcceptChanges();
  EXPECT_FALSE(lines.Exists(kBeta));
  EXPECT_EQ(lines.Original(kAlfa, "suma"), Value(11_lei));
  EXPECT_EQ(lines.State(kAlfa), RowState::Unmodified);
}

TEST(History, ValuesThatComeBackAreNoModification) {
  Dataset lines = Loaded();
  lines.Update(kAlfa, {{"suma", 11_lei}, {"partener", "X"}});
  EXPECT_EQ(lines.State(kAlfa), RowState::Modified);
  lines.Set(kAlfa, "suma", 10_lei);
  EXPECT_EQ(lines.State(kAlfa), RowState::Modified);
  lines.Set(kAlfa, "partener", "Alfa");
  EXPECT_EQ(lines.State(kAlfa), RowState::Unmodified);
  EXPECT_EQ(lines.Changes().MakeDelta().Count(), 0U);
  lines.Set(kAlfa, "partener", "Alfa");
  EXPECT_EQ(lines.Changes().Count(), 3U);
  lines.Set(kGama, "suma", 0_lei);
  EXPECT_EQ(lines.State(kGama), RowState::Modified);
  ExpectError<Error>([&] { lines.Set(kAlfa, "stampila", 5); }, "Dataset \"linii\": campul \"stampila\" nu se modifica");
}

TEST(History, RollsBackToEveryMark) {
  Dataset lines = Loaded();
  const std::vector<std::function<void()>> kSteps = {
      [&] { lines.Set(kAlfa, "suma", 11_lei); },
      [&] { lines.Set(kAlfa, "suma", Null{}); },
      [&] { lines.Set(kAlfa, "suma", 10_lei); },
      [&] {
        lines.Insert({{"partener", "Nou"}});
      },
      [&] { lines.Set(RowId{3}, "id", 9); },
      [&] { lines.Delete(kBeta); },
      [&] {
        lines.Insert({{"id", 2}, {"partener", "Alt Beta"}});
      },
      [&] { lines.Changes().RevertRow(RowId{4}); },
      [&] { lines.Changes().RevertRow(kBeta); },
      [&] { lines.Set(kGama, "id", 30); },
      [&] { lines.Delete(kGama); },
      [&] { lines.Changes().RevertRow(kGama); },
      [&] { lines.Delete(RowId{3}); },
  };
  for (std::size_t back = 0; back <= kSteps.size(); ++back) {
    lines = Loaded();
    std::vector<std::string> seen;
    std::vector<Mark> marks;
    for (const auto& step : kSteps) {
      seen.push_back(Show(lines));
      marks.push_back(lines.Changes().SetMark());
      step();
    }
    seen.push_back(Show(lines));
    marks.push_back(lines.Changes().SetMark());
    lines.Changes().RollbackTo(marks[back]);
    // Rows that were added since have been, and are gone.
    EXPECT_EQ(Show(lines).substr(0, seen[back].size()), seen[back]) << back;
    EXPECT_EQ(lines.Changes().Count(), back);
    if (back < kSteps.size()) {
      ExpectError<Error>([&] { lines.Changes().RollbackTo(marks[back + 1]); },
                         "Dataset \"linii\": punctul de revenire nu mai exista");
    }
    for (std::size_t i = back; i > 0; --i) {
      EXPECT_TRUE(lines.Changes().UndoLast());
      EXPECT_EQ(Show(lines).substr(0, seen[i - 1].size()), seen[i - 1]) << back << " " << i;
    }
    EXPECT_FALSE(lines.Changes().UndoLast());
    EXPECT_EQ(lines.Find(1), kAlfa);
    EXPECT_EQ(lines.Find(2), kBeta);
    EXPECT_EQ(lines.Find(3), kGama);
    EXPECT_EQ(lines.Find(9), std::nullopt);
    EXPECT_EQ(lines.Find(30), std::nullopt);
  }
}

TEST(History, RevertsOneRowAmongOthers) {
  Dataset lines = Loaded();
  lines.Update(kAlfa, {{"id", 7}, {"suma", 1_lei}});
  lines.Set(kBeta, "suma", 2_lei);
  lines.Changes().RevertRow(kAlfa);
  EXPECT_EQ(lines.State(kAlfa), RowState::Unmodified);
  EXPECT_EQ(lines.Find(1), kAlfa);
  EXPECT_EQ(lines.GetCurrency(kBeta, "suma"), 2_lei);
  lines.Changes().RevertRow(kAlfa);
  EXPECT_EQ(lines.Changes().Count(), 3U);

  lines.Set(kAlfa, "id", 7);
  lines.Insert({{"id", 1}, {"partener", "Alt Alfa"}});
  const std::string before = Show(lines);
  ExpectError<Error>([&] { lines.Changes().RevertRow(kAlfa); }, "Dataset \"linii\": cheia 1 exista deja");
  EXPECT_EQ(Show(lines), before);
  lines.Changes().CancelChanges();
  EXPECT_EQ(Show(lines).substr(0, Show(Loaded()).size()), Show(Loaded()));
  EXPECT_EQ(lines.Changes().Count(), 0U);
}

TEST(History, TellsWhatWasBefore) {
  Dataset lines = Loaded();
  lines.Update(kAlfa, {{"partener", "X"}, {"suma", Null{}}});
  lines.Set(kAlfa, "suma", 3_lei);
  lines.Delete(kAlfa);
  std::string log;
  lines.Changes().ForEach([&](const ChangeRecord& record) {
    log += std::to_string(static_cast<int>(record.kind)) + "@" + std::to_string(static_cast<unsigned>(record.row));
    for (const auto& [index, before] : record.fields) {
      log += " " + std::to_string(index) + "=" + (std::holds_alternative<Null>(before) ? "null" : "v");
    }
    log += ";";
    EXPECT_THROW(lines.Changes().AcceptChanges(), Error) << "the record that is told would be gone";
  });
  EXPECT_EQ(log, "1@0 1=v 2=v;1@0 2=null;2@0;");
}

TEST(History, DeltaIsTheNetOfChanges) {
  Dataset lines = Loaded();
  lines.Update(kAlfa, {{"suma", 11_lei}, {"nota", 4}});
  lines.Set(kAlfa, "partener", "X");
  lines.Set(kAlfa, "partener", "Alfa");
  lines.Set(kBeta, "suma", 2_lei);
  lines.Delete(kBeta);
  lines.Delete(lines.Insert({{"partener", "Trecator"}}));
  const RowId added = lines.Insert({{"partener", "Nou"}});
  lines.Set(added, "partener", "Nou de tot");
  const Delta delta = lines.Changes().MakeDelta();
  lines.Changes().CancelChanges();

  ASSERT_EQ(delta.Count(), 3U);
  EXPECT_EQ(delta.Kind(0), ChangeKind::Update);
  EXPECT_EQ(delta.Row(0), kAlfa);
  EXPECT_TRUE(delta.IsChanged(0, 2));
  EXPECT_FALSE(delta.IsChanged(0, 1));
  EXPECT_EQ(delta.Original(0, 0), Value(std::int64_t{1}));
  EXPECT_EQ(delta.Original(0, 2), Value(10_lei));
  EXPECT_EQ(delta.Current(0, 2), Value(11_lei));
  EXPECT_TRUE(delta.HasOriginal(0, 1));
  EXPECT_TRUE(delta.HasOriginal(0, 3)) << "not checked, but changed";
  EXPECT_EQ(delta.Kind(1), ChangeKind::Delete);
  EXPECT_EQ(delta.Original(1, 2), Value(20_lei));
  EXPECT_FALSE(delta.HasOriginal(1, 3)) << "neither checked nor changed";
  ExpectError<Error>([&] { static_cast<void>(delta.Original(1, 3)); },
                     "Dataset \"linii\": campul \"nota\" nu are valoare initiala in diferenta");
  ExpectError<Error>([&] { static_cast<void>(delta.Current(1, 2)); },
                     "Dataset \"linii\": un rand sters nu are valori noi");
  EXPECT_EQ(delta.Kind(2), ChangeKind::Insert);
  EXPECT_EQ(delta.Current(2, 1), Value(Text("Nou de tot")));
  EXPECT_FALSE(delta.HasOriginal(2, 1));
  ExpectError<ListIndexError>([&] { static_cast<void>(delta.Kind(3)); },
                              "Dataset \"linii\": diferenta nu are tichetul 3");
  EXPECT_NE(delta.Id(), lines.Changes().MakeDelta().Id());
  EXPECT_EQ(delta.Id().data3 >> 12U, 4);
}

TEST(History, BlocksCarryItThrough) {
  Dataset lines = Loaded();
  lines.Update(kAlfa, {{"suma", 11_lei}, {"id", 7}});
  lines.Set(kAlfa, "suma", Null{});
  lines.Delete(kBeta);
  lines.Insert({{"id", 2}, {"partener", "Alt Beta"}});
  lines.Set(kGama, "id", 30);
  lines.Delete(kGama);
  lines.Changes().RevertRow(kGama);
  lines.Changes().RevertRow(RowId{3});
  Dataset copy(CopyByBlocks(lines.GetContents()));
  EXPECT_EQ(Show(copy), Show(lines));
  while (lines.Changes().UndoLast()) {
    ASSERT_TRUE(copy.Changes().UndoLast());
    ASSERT_EQ(Show(copy), Show(lines));
    for (const int key : {1, 2, 3, 7, 30}) {
      ASSERT_EQ(copy.Find(key), lines.Find(key)) << key;
    }
  }
}

TEST(History, CompactionKeepsAllButWhatNobodyNeeds) {
  Dataset lines = Loaded();
  lines.Delete(kAlfa);
  lines.Changes().AcceptChanges();
  const FieldRef sum = lines.Field("suma");
  lines.Set(kBeta, sum, 21_lei);
  const Mark mark = lines.Changes().SetMark();
  lines.Delete(lines.Insert({{"partener", "Trecator"}}));
  lines.Delete(kGama);
  lines.Compact();
  const RowId beta{0};
  EXPECT_EQ(lines.GetContents().rowCount, 3U);
  EXPECT_EQ(lines.GetCurrency(beta, sum), 21_lei);
  EXPECT_EQ(lines.Original(beta, sum), Value(20_lei));
  EXPECT_EQ(lines.Find(2), beta);
  EXPECT_EQ(lines.State(RowId{1}), RowState::Deleted);
  lines.Changes().RollbackTo(mark);
  EXPECT_EQ(lines.Find(3), RowId{1});
  EXPECT_TRUE(lines.Changes().UndoLast());
  EXPECT_EQ(lines.State(beta), RowState::Unmodified);
}

class Recorder : public DatasetListener {
 public:
  void BeforePost(const Proposal& proposal) override {
    if (refuses && proposal.IsChanged(2) && std::get<Currency>(proposal.Get(2).Get()) == 13_lei) {
      throw Error("fara 13");
    }
    asked += std::to_string(static_cast<int>(proposal.Kind()));
    if (whenAsked) {
      whenAsked();
    }
  }
  void Changed(const ChangeNotice& notice) noexcept override {
    told += notice.kind ? std::to_string(static_cast<int>(*notice.kind)) + "@" +
                              std::to_string(static_cast<unsigned>(notice.row))
                        : "*";
    for (const std::uint16_t field : notice.fields) {
      told += "." + std::to_string(field);
    }
    told += " ";
    if (whenTold) {
      whenTold();
    }
  }
  bool refuses = false;
  std::function<void()> whenAsked;
  std::function<void()> whenTold;
  std::string asked;
  std::string told;
};

TEST(Listeners, AreAskedAndTold) {
  Dataset lines = Loaded();
  Recorder recorder;
  recorder.refuses = true;
  lines.AddListener(recorder);
  const std::string before = Show(lines);
  ExpectError<Error>([&] { lines.Set(kAlfa, "suma", 13_lei); }, "fara 13");
  ExpectError<Error>([&] { lines.Insert({{"partener", "N"}, {"suma", 13_lei}}); }, "fara 13");
  EXPECT_EQ(Show(lines), before);
  lines.Update(kAlfa, {{"suma", 12_lei}, {"nota", 1}});
  lines.Insert({{"partener", "N"}});
  lines.Delete(kBeta);
  lines.Changes().RevertRow(kBeta);
  lines.BeginUpdate();
  lines.Set(kAlfa, "suma", 14_lei);
  lines.Set(kAlfa, "suma", 15_lei);
  lines.EndUpdate();
  lines.Changes().UndoLast();
  EXPECT_EQ(recorder.asked, "10211");
  EXPECT_EQ(recorder.told, "1@0.2.3 0@3 2@1 3@1 * * ");
  lines.RemoveListener(recorder);
  lines.Set(kAlfa, "suma", 13_lei);
  EXPECT_EQ(recorder.asked, "10211");
}

TEST(Listeners, MayReadButNotEdit) {
  Dataset lines = Loaded();
  Recorder recorder;
  std::string message;
  recorder.whenTold = [&] {
    try {
      lines.Set(kAlfa, "suma", lines.GetCurrency(kBeta, "suma"));
    } catch (const Error& error) {
      message = error.what();
    }
    lines.RemoveListener(recorder);
  };
  lines.AddListener(recorder);
  lines.Set(kAlfa, "suma", 1_lei);
  EXPECT_EQ(message, "Dataset \"linii\": nu se modifica din cel care este anuntat de modificari");
  EXPECT_EQ(lines.GetCurrency(kAlfa, "suma"), 1_lei);
  lines.Set(kAlfa, "suma", 2_lei);
  EXPECT_EQ(recorder.told, "1@0.2 ");
}

TEST(Snapshot, StaysAsItWas) {
  Dataset lines = Loaded();
  for (int i = 10; i < 9000; ++i) {
    lines.Insert({{"id", i}, {"partener", "p" + std::to_string(i)}});
  }
  const FieldRef sum = lines.Field("suma");
  const Snapshot before = lines.TakeSnapshot();
  const std::string shown = Show(before);
  lines.Set(kAlfa, sum, 99_lei);
  lines.Set(kAlfa, sum, Null{});
  lines.Delete(kBeta);
  lines.Insert({{"partener", "Nou"}});
  lines.Changes().CancelChanges();
  lines.Insert({{"id", 5}, {"partener", "Altul"}});
  lines.Compact();
  EXPECT_EQ(Show(before), shown);
  EXPECT_EQ(before.GetCurrency(kAlfa, sum), 10_lei);
  EXPECT_EQ(before.RowCount(), 8993U);
}

TEST(Snapshot, TakenByAListenerHoldsNothingOfWhatIsProposed) {
  Dataset lines = Loaded();
  Dataset same = Loaded();
  std::vector<std::pair<Snapshot, std::string>> taken;
  Recorder recorder;
  recorder.whenAsked = [&] { taken.emplace_back(lines.TakeSnapshot(), Show(lines)); };
  lines.AddListener(recorder);
  for (Dataset* const each : {&lines, &same}) {
    for (int i = 10; i < 90; ++i) {
      each->Insert({{"id", i}, {"partener", "p"}, {"nota", i % 3 == 0 ? ValueView(Null{}) : ValueView(i)}});
      each->Set(RowId{static_cast<std::uint32_t>(i) / 2 - 5}, "suma", Currency::FromRaw(i));
    }
  }
  lines.RemoveListener(recorder);
  EXPECT_EQ(taken.size(), 160U);
  for (const auto& [snapshot, shown] : taken) {
    ASSERT_EQ(Show(snapshot), shown);
  }
  EXPECT_EQ(Show(lines), Show(same));
}

}  // namespace
}  // namespace kiv
