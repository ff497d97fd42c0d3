#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Allocations.h"
#include "BlockCopy.h"
#include "Expect.h"
#include "PacketBytes.h"
#include "Show.h"
#include "kivtools/dataset/Aggregate.h"
#include "kivtools/dataset/Cursor.h"
#include "kivtools/dataset/Loader.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using namespace kiv::literals;

/// Before the edits of the dataset made last.
std::optional<Mark> marked;

/// Rows on both sides of the edge of a block, some of them changed, the log nearly at the end of a piece.
Dataset Edited() {
  Dataset dataset("randuri", {{"id", FieldType::AutoInc, kKey},
                              {"text", FieldType::Text, 20},
                              {"wide", FieldType::WideText},
                              {"guid", FieldType::Guid},
                              {"memo", FieldType::Memo},
                              {"suma", FieldType::Currency}});
  Loader loader(dataset);
  const ValueView null;
  for (std::int64_t i = 0; i < 64; ++i) {
    loader.Add({i, "t" + std::to_string(i), null, Guid{1}, null, 1_lei});
  }
  loader.Finish();
  marked = dataset.Changes().SetMark();
  dataset.Set(RowId{1}, "suma", 2_lei);
  dataset.Delete(RowId{2});
  dataset.Update(RowId{3}, {{"id", 1003}, {"memo", "m"}});
  return dataset;
}

struct Operation {
  const char* name;
  void (*act)(Dataset&);
};

const Operation kOperations[] = {
    {"insert",
     [](Dataset& d) {
       d.Insert({{"text", "nou"}, {"wide", u"n"}, {"guid", Guid{2}}, {"memo", "mm"}});
     }},
    {"insert nulls", [](Dataset& d) { d.Insert({}); }},
    {"insert long",
     [](Dataset& d) {
       d.Insert({{"memo", Text(40'000, 'x')}, {"wide", WideText(20'000, u'x')}});
     }},
    {"update",
     [](Dataset& d) {
       d.Update(RowId{5}, {{"text", "alt"}, {"wide", u"w"}, {"suma", Null{}}});
     }},
    {"update key", [](Dataset& d) { d.Set(RowId{5}, "id", std::int64_t{1} << 40U); }},
    {"update again",
     [](Dataset& d) {
       d.Update(RowId{1}, {{"memo", "alt"}, {"guid", Guid{7}}});
     }},
    {"delete", [](Dataset& d) { d.Delete(RowId{5}); }},
    {"revert modified", [](Dataset& d) { d.Changes().RevertRow(RowId{3}); }},
    {"revert deleted", [](Dataset& d) { d.Changes().RevertRow(RowId{2}); }},
    {"undo", [](Dataset& d) { d.Changes().UndoLast(); }},
    {"cancel", [](Dataset& d) { d.Changes().CancelChanges(); }},
    {"accept", [](Dataset& d) { d.Changes().AcceptChanges(); }},
    {"rollback", [](Dataset& d) { d.Changes().RollbackTo(*marked); }},
    {"mark", [](Dataset& d) { d.Changes().SetMark(); }},
    {"snapshot", [](Dataset& d) { static_cast<void>(d.TakeSnapshot()); }},
    {"delta", [](Dataset& d) { static_cast<void>(d.Changes().MakeDelta()); }},
    {"compact", [](Dataset& d) { d.Compact(); }},
    {"load",
     [](Dataset& d) {
       Loader loader(d);
       for (std::int64_t i = 100; i < 110; ++i) {
         loader.Add({i, "t", u"w", Guid{}, "memo", Null{}});
       }
       loader.Finish();
     }},
};

/// The dataset that an operation is tried on: as it is, with every block shared with a snapshot, or after a compaction.
enum class Form { Own, Shared, Compacted };

TEST(Allocations, AFailureAtAnyOfThemChangesNothing) {
  for (const Form form : {Form::Own, Form::Shared, Form::Compacted}) {
    for (const auto& [name, act] : kOperations) {
      bool hasFailed = true;
      for (std::uint64_t failing = 0; hasFailed; ++failing) {
        ASSERT_LT(failing, 10'000U) << name;
        Dataset dataset = Edited();
        if (form == Form::Compacted) {
          dataset.Compact();
        }
        const std::optional<Snapshot> snapshot =
            form == Form::Shared ? std::optional(dataset.TakeSnapshot()) : std::nullopt;
        const std::string before = Show(dataset);
        const std::size_t changes = dataset.Changes().Count();
        Allocations::FailFrom(failing);
        try {
          act(dataset);
          hasFailed = Allocations::Stop();
          ASSERT_FALSE(hasFailed) << name << ": a failure went unnoticed";
        } catch (const std::bad_alloc&) {
          ASSERT_TRUE(Allocations::Stop());
          ASSERT_EQ(Show(dataset), before) << name << " " << failing;
          ASSERT_EQ(dataset.Changes().Count(), changes) << name;
          for (const std::int64_t key : {1, 2, 3, 5, 63, 1003}) {
            ASSERT_EQ(dataset.Find(key).has_value(), key != 2 && key != 3) << name << " " << key;
          }
          // And it is as good as new: the same works now, and all of it can be taken back.
          act(dataset);
          dataset.Changes().CancelChanges();
          ASSERT_TRUE(dataset.Find(63).has_value());
        }
        if (snapshot) {
          ASSERT_EQ(Show(*snapshot), before) << name;
        }
      }
    }
  }
}

/// The rows that a cursor sees, and where it stands.
std::string Walked(Cursor& cursor) {
  std::string seen = std::to_string(static_cast<std::uint32_t>(cursor.Row())) + ":";
  Cursor clone = cursor;
  for (clone.First(); !clone.AtEnd(); clone.Next()) {
    seen += " " + std::to_string(static_cast<std::uint32_t>(clone.Row()));
  }
  return seen;
}

/// The rows that a cursor sees, wherever it stands.
std::string RowsOf(Cursor& cursor) {
  cursor.First();
  return cursor.AtEnd() ? "" : Walked(cursor);
}

std::string Shown(const Aggregate& aggregate) {
  std::string shown;
  for (const AggregateGroup& group : aggregate.Groups()) {
    shown += ShownValue(FieldType::Text, group.key.at(0)) + "=" + ShownValue(FieldType::Currency, group.value) + " ";
  }
  return shown;
}

TEST(Allocations, AFailureLeavesFiltersAndFiguresAsTheyWere) {
  std::vector<Operation> operations(std::begin(kOperations), std::end(kOperations));
  operations.push_back({"filter by vectors", [](Dataset& d) { Cursor(d).Filter("suma < 2 and text like 't%'"); }});
  operations.push_back({"filter by index", [](Dataset& d) {
                          Cursor ordered(d);
                          ordered.OrderBy("text");
                          Cursor(d).Filter("text = 't17' or text = 't18'");
                          Cursor(d).Filter("text = 't17' and suma / 2 < 3");
                        }});
  operations.push_back({"figure", [](Dataset& d) { static_cast<void>(Aggregate(d, "max(text)", "suma").Groups()); }});
  constexpr TextView kCondition = "Substr(text, 2) || 'un text mai lung' >= '3' or suma = 2";
  for (const auto& [name, act] : operations) {
    bool hasFailed = true;
    for (std::uint64_t failing = 0; hasFailed; ++failing) {
      ASSERT_LT(failing, 10'000U) << name;
      Dataset dataset = Edited();
      Cursor cursor(dataset);
      cursor.OrderBy("text desc");
      cursor.Filter(kCondition);
      const Aggregate sums(dataset, "sum(suma)", "text");
      const std::string before = RowsOf(cursor);
      const std::string sumsBefore = Shown(sums);
      Allocations::FailFrom(failing);
      try {
        act(dataset);
        hasFailed = Allocations::Stop();  // what follows an edit may fail and catch up
      } catch (const std::bad_alloc&) {
        ASSERT_TRUE(Allocations::Stop());
        ASSERT_EQ(RowsOf(cursor), before) << name << " " << failing;
        ASSERT_EQ(Shown(sums), sumsBefore) << name << " " << failing;
        act(dataset);
      }
      Cursor fresh(dataset);
      fresh.OrderBy("text desc");
      fresh.Filter(kCondition);
      ASSERT_EQ(RowsOf(cursor), RowsOf(fresh)) << name << " " << failing;
      ASSERT_EQ(Shown(sums), Shown(Aggregate(dataset, "sum(suma)", "text"))) << name << " " << failing;
    }
  }
}

TEST(Allocations, AFailureLeavesOrdersAndCursorsAsTheyWere) {
  const Operation kMoves[] = {
      {"order", [](Dataset& d) { Cursor(d).OrderBy("suma desc, text"); }},
      {"clone",
       [](Dataset& d) {
         Cursor cursor(d);
         cursor.OrderBy("text");
         cursor.SetRange({"t1"}, {"t3"});
         const Cursor clone = cursor;
       }},
      {"edit",
       [](Dataset& d) {
         Cursor cursor(d);
         cursor.OrderBy("text");
         cursor.First();
         static_cast<void>(cursor.Bookmark());
         cursor.Edit();
         cursor.Set("text", "un text mai lung");
         cursor.Post();
       }},
  };
  std::vector<Operation> operations(std::begin(kOperations), std::end(kOperations));
  operations.insert(operations.end(), std::begin(kMoves), std::end(kMoves));
  for (const auto& [name, act] : operations) {
    bool hasFailed = true;
    for (std::uint64_t failing = 0; hasFailed; ++failing) {
      ASSERT_LT(failing, 10'000U) << name;
      Dataset dataset = Edited();
      {
        Loader loader(dataset);  // so many that a leaf is full
        const ValueView null;
        for (std::int64_t i = 0; i < 1024 - 64 + 1; ++i) {
          loader.Add({10'000 + i, "t", null, null, null, null});
        }
        loader.Finish();
      }
      Cursor cursor(dataset);
      cursor.OrderBy("text, id desc");
      cursor.GoTo(RowId{5});
      const std::string before = Walked(cursor);
      Allocations::FailFrom(failing);
      try {
        act(dataset);
        hasFailed = Allocations::Stop();
        ASSERT_FALSE(hasFailed) << name << ": a failure went unnoticed";
      } catch (const std::bad_alloc&) {
        ASSERT_TRUE(Allocations::Stop());
        ASSERT_EQ(Walked(cursor), before) << name << " " << failing;
        act(dataset);
      }
      Cursor fresh(dataset);
      fresh.OrderBy("text, id desc, suma");
      fresh.GoTo(cursor.Row());
      ASSERT_EQ(Walked(cursor), Walked(fresh)) << name;
    }
  }
}

TEST(Allocations, AFailureWhileBlocksAreReadLosesNothing) {
  const Dataset source = Edited();
  bool hasFailed = true;
  for (std::uint64_t failing = 0; hasFailed; ++failing) {
    Allocations::FailFrom(failing);
    try {
      const Dataset copy(CopyByBlocks(source.GetContents()));
      hasFailed = Allocations::Stop();
      ASSERT_EQ(Show(copy), Show(source));
    } catch (const std::bad_alloc&) {
      ASSERT_TRUE(Allocations::Stop());
    }
  }
}

TEST(Allocations, AFailureWhileAPacketIsWrittenOrReadLosesNothing) {
  Dataset source = Edited();
  const PacketBytes packet = Written(source);
  const PacketBytes delta = Written(source.Changes().MakeDelta());
  const TestFolder folder;
  const auto path = folder / "randuri.kdp";
  SaveBinary(source, path, {.flush = false});
  const Dataset few("randuri", source.GetSchema());
  const struct {
    const char* name;
    std::function<void()> act;
  } kActs[] = {
      {"write", [&] { WriteBinary(source, [](std::span<const std::uint8_t>) {}); }},
      {"read", [&] { static_cast<void>(ReadBack(packet)); }},
      {"delta", [&] { static_cast<void>(ReadDelta(SourceOf(delta))); }},
      {"save", [&] { SaveBinary(few, path, {.flush = false}); }},
      {"load", [&] { static_cast<void>(LoadBinary(path)); }},
  };
  for (const auto& [name, act] : kActs) {
    bool hasFailed = true;
    for (std::uint64_t failing = 0; hasFailed; ++failing) {
      ASSERT_LT(failing, 10'000U) << name;
      Allocations::FailFrom(failing);
      try {
        act();
        hasFailed = Allocations::Stop();
        ASSERT_FALSE(hasFailed) << name << ": a failure went unnoticed";
      } catch (const std::bad_alloc&) {
        ASSERT_TRUE(Allocations::Stop());
        ASSERT_EQ(LoadBinary(path).RowCount(), name == std::string_view("load") ? 0U : source.RowCount()) << failing;
      }
    }
  }
}

TEST(Allocations, PacketsAreWrittenAndReadInPiecesOfAQuarterOfAMebibyte) {
  Dataset dataset("randuri",
                  {{"id", FieldType::Int32, kKey}, {"nume", FieldType::Text}, {"suma", FieldType::Currency}});
  {
    Loader loader(dataset);
    for (int i = 0; i < 100'000; ++i) {
      loader.Add({i, "un text oarecare " + std::to_string(i), Currency::FromRaw(std::int64_t{i} << 36)});
    }
    loader.Finish();
  }
  const PacketBytes packet = Written(dataset);
  Allocations::WatchLargest();
  WriteBinary(dataset, [](std::span<const std::uint8_t>) {});
  static_cast<void>(ReadBack(packet));
  EXPECT_LE(Allocations::Largest(), packet::kChunkBuffer);
}

TEST(Allocations, NoneIsAbove64KiBButThoseOfLongValues) {
  Allocations::WatchLargest();
  Dataset dataset("randuri", {{"id", FieldType::Int32, kKey},
                              {"text", FieldType::Text},
                              {"guid", FieldType::Guid},
                              {"suma", FieldType::Currency}});
  std::vector<FieldDef> many;
  many.reserve(60);
  for (int i = 0; i < 60; ++i) {
    many.emplace_back("text" + std::to_string(i), FieldType::Text, 20);
  }
  Dataset wide("lata", Schema(many));
  wide.Insert({{"text59", "t"}});
  {
    Loader loader(dataset);
    for (int i = 0; i < 100'000; ++i) {
      loader.Add({i, "un text oarecare " + std::to_string(i), Guid{}, 1_lei});
    }
    loader.Finish();
  }
  for (int i = 0; i < 80'000; ++i) {
    dataset.Insert({{"id", 200'000 + i}, {"text", "alt text"}, {"suma", 3_lei}});
    dataset.Set(static_cast<RowId>(i), "suma", 2_lei);
  }
  const Snapshot snapshot = dataset.TakeSnapshot();
  dataset.Set(RowId{50'000}, "text", "nou");
  EXPECT_EQ(dataset.Changes().MakeDelta().Count(), 160'000U);
  dataset.Compact();
  dataset.Changes().CancelChanges();
  EXPECT_LE(Allocations::Largest(), 64U * 1024);
  EXPECT_GE(Allocations::Largest(), 32U * 1024) << "nothing was watched";
}

}  // namespace
}  // namespace kiv
