#include <algorithm>
#include <functional>
#include <string>

#include "BlockCopy.h"
#include "Expect.h"
#include "SameRows.h"
#include "dataset/store/BlockLoader.h"

namespace kiv {
namespace {

using namespace kiv::literals;
using namespace kiv::store;

const Schema& AllTypes() {
  static const Schema schema({{"id", FieldType::AutoInc, kKey},
                              {"scurt", FieldType::Int16},
                              {"oras", FieldType::Text, 20},
                              {"lat", FieldType::WideText},
                              {"da", FieldType::Boolean},
                              {"cod", FieldType::Guid},
                              {"zi", FieldType::Date},
                              {"obs", FieldType::Memo}});
  return schema;
}

TEST(BlockLoader, TakesBackWhatContentsGive) {
  Dataset source("sursa", AllTypes());
  for (int i = 0; i < 9000; ++i) {
    const RowId row =
        source.Insert({{"scurt", i % 30'000}, {"oras", "o" + std::to_string(i % 50)}, {"da", i % 2 == 0}});
    if (i % 5 == 0) {
      source.Update(row, {{"lat", u"l\u0103t"}, {"cod", Guid{7, 8, 9, {1}}}, {"zi", DateTime(45000)}, {"obs", "lung"}});
    }
    if (i % 11 == 0) {
      source.Delete(row);
    }
  }
  Dataset copy(CopyByBlocks(source.GetContents()));
  ExpectSameRows(source, copy);
  EXPECT_EQ(copy.Find(-2), RowId{1});
  EXPECT_EQ(copy.GetInt64(copy.Insert({{"oras", "o1"}}), "id"), -9001);
}

/// A loader with one block of two rows, complete but for what a test breaks.
class Broken {
 public:
  explicit Broken(std::uint32_t rows = 2) : loader_("stricat", AllTypes()) {
    loader_.AddEntry(2, "Iasi");
    loader_.BeginBlock(rows);
    for (std::size_t field = 0; field < AllTypes().Fields().size(); ++field) {
      std::ranges::fill(loader_.Values(field), std::byte{0});
    }
    std::ranges::fill(loader_.SecondValues(5), std::byte{0});
    for (std::uint32_t row = 0; row < rows; ++row) {
      loader_.Values(0)[std::size_t{row} * 8] = static_cast<std::byte>(row);
      loader_.PutText(3, row, {});
      SetNull(7, row);
    }
  }
  void SetNull(std::size_t field, std::uint32_t row) { loader_.Nulls(field)[row / 8] |= std::byte(1U << (row % 8)); }
  BlockLoader& operator*() { return loader_; }
  BlockLoader* operator->() { return &loader_; }

 private:
  BlockLoader loader_;
};

TEST(BlockLoader, RefusesBlocksThatNoPostCouldHaveMade) {
  const struct {
    void (*spoil)(Broken&);
    TextView message;
  } kCases[] = {
      {[](Broken& b) { b.SetNull(0, 1); }, "campul \"id\", randul 1: trebuie completat"},
      {[](Broken& b) { b->Values(0)[8] = {}; }, "cheia 0 exista deja"},
      {[](Broken& b) { b->Values(2)[4] = std::byte{1}; },
       "campul \"oras\", randul 1: trimite la o valoare care nu exista"},
      {[](Broken& b) { b->Values(6)[3] = std::byte{0x7F}; }, "campul \"zi\" nu poate tine 2130706432"},
      {[](Broken& b) { b->Nulls(7)[0] = {}; }, "campul \"obs\", randul 0: trimite la o valoare care nu exista"},
      {[](Broken& b) { b->States()[1] = std::byte{5}; }, "campul \"id\", randul 1: starea nu exista"},
      {[](Broken& b) { b->States()[1] = std::byte{1}; },
       "campul \"id\", randul 1: starea nu se potriveste cu jurnalul"},
      {[](Broken& b) { b->AddEntry(2, "Iasi"); }, "campul \"oras\", randul 1: textul apare de doua ori in dictionar"},
      {[](Broken& b) { b->AddEntry(2, Text(21, 'x')); }, "campul \"oras\" tine cel mult 20 octeti, nu 21"},
      {[](Broken& b) { b->EndBlock(), b->BeginBlock(1); }, "un bloc are un numar nepermis de randuri"},
  };
  for (const auto& [spoil, message] : kCases) {
    Broken broken;
    ExpectError<Error>(
        [&broken, spoil = spoil] {
          spoil(broken);
          broken->EndBlock();
          broken->Finish();
        },
        "Dataset \"stricat\": " + Text(message));
  }
  Broken whole;
  whole->EndBlock();
  EXPECT_EQ(Dataset(whole->Finish()).RowCount(), 2U);
}

TEST(BlockLoader, RefusesLogsThatNoEditsCouldHaveLeft) {
  using Old = BlockLoader::OldValue;
  const Old small{1, {.bits = 3, .isNull = false}};
  const struct {
    TextView message;
    std::function<void(BlockLoader&)> add;
  } kCases[] = {
      {"jurnalul are o inregistrare nepermisa", [](BlockLoader& l) { l.AddRecord(ChangeKind::Insert, 2, {}); }},
      {"jurnalul are o inregistrare nepermisa", [](BlockLoader& l) { l.AddRecord(ChangeKind::Update, 0, {}); }},
      {"jurnalul are o inregistrare nepermisa",
       [&](BlockLoader& l) {
         l.AddRecord(ChangeKind::Delete, 0, {&small, 1});
       }},
      {"campul \"id\", randul 0: modificarile randului nu urmeaza una din alta",
       [&](BlockLoader& l) {
         l.AddRecord(ChangeKind::Update, 0, {&small, 1});
         l.AddRecord(ChangeKind::Insert, 0, {});
       }},
      {"campul \"id\", randul 0: modificarile randului nu urmeaza una din alta",
       [](BlockLoader& l) { l.AddRecord(ChangeKind::Restore, 0, {}); }},
      {"campul \"oras\", randul 0: trimite la o valoare care nu exista",
       [](BlockLoader& l) {
         const Old city{2, {.bits = 1, .isNull = false}};
         l.AddRecord(ChangeKind::Update, 0, {&city, 1});
       }},
      {"jurnalul are campuri in alta ordine",
       [&](BlockLoader& l) {
         const Old twice[] = {small, small};
         l.AddRecord(ChangeKind::Update, 0, twice);
       }},
      {"campul \"id\", randul 0: starea nu se potriveste cu jurnalul",
       [&](BlockLoader& l) {
         l.AddRecord(ChangeKind::Update, 0, {&small, 1});
         l.Finish();
       }},
  };
  for (const auto& [message, add] : kCases) {
    Broken broken;
    broken->EndBlock();
    ExpectError<Error>([&broken, add = add] { add(*broken); }, "Dataset \"stricat\": " + Text(message));
  }
}

/// Rows with the keys 10, 11, 12, ... in the given states, and a log about them.
struct KeyMove {
  ChangeKind kind;
  std::uint32_t row;
  std::int64_t oldKey = -1;
};

void LoadWithLog(std::initializer_list<StoredState> states, std::initializer_list<KeyMove> log) {
  BlockLoader loader("mutari", {{"id", FieldType::Int32, kKey}});
  const auto rows = static_cast<std::uint32_t>(states.size());
  loader.BeginBlock(rows);
  for (std::uint32_t row = 0; row < rows; ++row) {
    const std::uint32_t key = 10 + row;
    std::memcpy(loader.Values(0).data() + row * sizeof key, &key, sizeof key);
    loader.States()[row] = static_cast<std::byte>(states.begin()[row]);
  }
  loader.EndBlock();
  for (const KeyMove& move : log) {
    const BlockLoader::OldValue old{0, {.bits = static_cast<std::uint64_t>(move.oldKey), .isNull = false}};
    loader.AddRecord(move.kind, move.row, std::span(&old, move.oldKey < 0 ? 0 : 1));
  }
  loader.Finish();
}

TEST(BlockLoader, NoRollBackGivesTwoRowsOneKey) {
  using enum StoredState;
  using enum ChangeKind;
  const struct {
    std::initializer_list<StoredState> states;
    std::initializer_list<KeyMove> log;
    int twice;  // the key that two rows would have, 0 for none
  } kCases[] = {
      {{Modified, Unmodified}, {{Update, 0, 11}}, 11},
      {{Modified, Modified}, {{Update, 0, 5}, {Update, 1, 5}}, 5},
      {{Modified, Modified}, {{Update, 0, 5}, {Update, 1, 10}}, 10},
      {{Modified, Modified}, {{Update, 1, 10}, {Update, 0, 5}}, 0},
      {{Deleted, Modified}, {{Delete, 0}, {Update, 1, 10}}, 10},
      {{Deleted, Inserted}, {{Update, 0, 11}, {Delete, 0}, {Insert, 1}}, 0},
      {{Deleted, Inserted}, {{Insert, 1}, {Update, 0, 11}, {Delete, 0}}, 11},
      {{Unmodified, Inserted}, {{Update, 0, 10}, {Delete, 0}, {Restore, 0, 11}, {Insert, 1}}, 0},
      {{Gone, Modified}, {{Insert, 0}, {Delete, 0}, {Update, 1, 10}}, 10},
      {{Gone, Modified}, {{Update, 1, 10}, {Insert, 0}, {Delete, 0}}, 0},
      {{Gone, Modified}, {{Update, 1, 10}, {Insert, 0}, {Update, 0, 11}, {Delete, 0}}, 11},
  };
  int number = 0;
  for (const auto& [states, log, twice] : kCases) {
    SCOPED_TRACE(number++);
    const auto load = [states = states, log = log] { LoadWithLog(states, log); };
    if (twice == 0) {
      EXPECT_NO_THROW(load());
    } else {
      ExpectError<Error>(load, "Dataset \"mutari\": cheia " + std::to_string(twice) + " exista deja");
    }
  }
}

}  // namespace
}  // namespace kiv
