#include <random>
#include <set>

#include "Allocations.h"
#include "EveryType.h"
#include "Expect.h"
#include "FixedClock.h"
#include "PacketBytes.h"
#include "Show.h"
#include "core/Crc32c.h"
#include "dataset/packet/JournalFormat.h"
#include "kivtools/dataset/Journal.h"
#include "platform/FailingCalls.h"
#include "platform/Files.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

const JournalOptions kQuick = {.flush = JournalFlush::Never, .save = {.flush = false}};

Dataset MakeLines() {
  Dataset lines("linii", {{"id", FieldType::AutoInc, kKey},
                          {"nume", FieldType::Text, 40, kReadOnly | kCheck},
                          {"suma", FieldType::Currency}});
  lines.Insert({{"nume", "Alfa"}, {"suma", 1_lei}});
  lines.Insert({{"nume", "Beta"}});
  return lines;
}

/// Everything but the header, in which each packet has an identity of its own.
PacketBytes Content(const DatasetView& dataset) {
  PacketBytes bytes = Written(dataset);
  bytes.erase(bytes.begin(), bytes.begin() + packet::kHeaderSize);
  return bytes;
}

PacketBytes Load(const std::filesystem::path& path, LoadReport& report) {
  return Content(LoadBinary(path, {}, &report));
}

TEST(Journal, EveryKindOfEditIsDoneAgain) {
  const TestFolder folder;
  const auto path = folder / "arhiva.kdp";
  for (const bool hasHeap : {false, true}) {
    Dataset dataset = hasHeap ? WithHeaps() : Dataset("arhiva", EveryType());
    AddRows(dataset, 300);
    // Rows that the packet leaves out, so that those behind them get other numbers.
    for (const std::uint32_t row : {0U, 7U, 8U, 200U}) {
      dataset.Delete(RowId{row});
    }
    dataset.Changes().AcceptChanges();
    Edit(dataset, 1);
    Journal journal(dataset, path, kQuick);
    LoadReport report;
    std::uint64_t edits = 0;
    const auto expectSame = [&](const char* what) {
      EXPECT_EQ(Content(dataset), Load(path, report)) << what;
      EXPECT_GT(report.replayed, edits) << what;
      EXPECT_EQ(report.lostBytes, 0U) << what;
      edits = report.replayed;
    };
    Edit(dataset, 2);
    expectSame("posts and reverts");
    const Mark mark = dataset.Changes().SetMark();
    Edit(dataset, 3);
    dataset.Changes().UndoLast();
    expectSame("undo");
    dataset.Changes().RollbackTo(mark);
    expectSame("roll-back");
    dataset.Changes().AcceptChanges();
    expectSame("accept");
    Edit(dataset, 4);
    dataset.Compact();
    expectSame("compact");
    Edit(dataset, 5);
    expectSame("posts after compact");
    dataset.Changes().CancelChanges();
    expectSame("cancel");
    journal.Save();
    EXPECT_EQ(journal.Size(), packet::kJournalHeaderSize);
    EXPECT_EQ(Content(dataset), Load(path, report));
    EXPECT_EQ(report.replayed, 0U);
    Edit(dataset, 6);
    edits = 0;
    expectSame("posts after a save");
  }
}

TEST(Journal, CutShortAtAnyByteItIsWholeToItsLastWholeEdit) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  const auto log = folder / "linii.kdp.log";
  std::vector<std::pair<std::uint64_t, PacketBytes>> states;  // by the size of the log
  {
    Dataset lines = MakeLines();
    Journal journal(lines, path, kQuick);
    const auto note = [&] { states.emplace_back(journal.Size(), Content(lines)); };
    note();
    lines.Set(RowId{0}, "suma", 5_lei);
    note();
    lines.Insert({{"nume", "Gama"}});
    note();
    lines.Delete(RowId{1});
    note();
    lines.Changes().UndoLast();
    note();
  }
  const std::string whole = ReadWhole(log);
  ASSERT_EQ(whole.size(), states.back().first);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    WriteWhole(log, whole.substr(0, size));
    std::size_t state = 0;
    while (state + 1 < states.size() && states[state + 1].first <= size) {
      ++state;
    }
    LoadReport report;
    ASSERT_EQ(Load(path, report), states[state].second) << size;
    EXPECT_EQ(report.replayed, state) << size;
    EXPECT_EQ(report.lostBytes, size < packet::kJournalHeaderSize ? 0 : size - states[state].first) << size;
  }
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    std::string damaged = whole;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
    WriteWhole(log, damaged);
    std::size_t state = 0;
    while (state + 1 < states.size() && states[state + 1].first <= bit / 8) {
      ++state;
    }
    LoadReport report;
    ASSERT_EQ(Load(path, report), states[state].second) << bit;
    EXPECT_GT(report.lostBytes, 0U) << bit;
  }
}

TEST(Journal, IsThatOfItsOwnPacketAlone) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  Dataset lines = MakeLines();
  {
    Journal journal(lines, path, kQuick);
    lines.Set(RowId{0}, "suma", 7_lei);
  }
  lines.Set(RowId{0}, "suma", 8_lei);
  SaveBinary(lines, path, {.flush = false});
  LoadReport report;
  EXPECT_EQ(LoadBinary(path, {}, &report).GetCurrency(RowId{0}, "suma"), 8_lei);
  EXPECT_EQ(report.replayed, 0U);
  EXPECT_EQ(report.lostBytes, 0U);
}

TEST(Journal, NobodyElseSavesTheFileMeanwhile) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  Dataset lines = MakeLines();
  Dataset others = MakeLines();
  {
    Journal journal(lines, path, kQuick);
    EXPECT_THROW(Journal(others, path, kQuick), Error);
    ExpectError<Error>([&] { Journal(lines, folder / "alta.kdp", kQuick); }, "Dataset \"linii\": are deja un jurnal");
    try {
      SaveBinary(others, path);
      FAIL();
    } catch (const Error& error) {
      EXPECT_TRUE(std::string_view(error.what()).ends_with("linii.kdp.log: alt program tine jurnalul fisierului"))
          << error.what();
    }
    ExpectError<Error>([&] { Loader{lines}; }, "Dataset \"linii\": nu se incarca randuri cat timp are un jurnal");
    EXPECT_EQ(LoadBinary(path).RowCount(), 2U);
    lines.Set(RowId{0}, "suma", 3_lei);
    journal.Save();
  }
  SaveBinary(others, path, {.flush = false});
  Journal(others, path, kQuick).Flush();
  Loader loader(lines);
  loader.Finish();
}

TEST(Journal, AFileThatIsBeingSavedIsNotSavedBySomebodyElse) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  SaveBinary(MakeLines(), path, {.flush = false});
  platform::File other;
  other.Open(path, platform::OpenMode::ReadFile).OrThrow("open");
  other.Lock().OrThrow("lock");
  ExpectError<Error>([&] { SaveBinary(MakeLines(), path); }, "SaveBinary: " + platform::ShownPath(path.native()) +
                                                                 ": fisierul este salvat chiar acum de alt program");
  EXPECT_EQ(LoadBinary(path).RowCount(), 2U);
  static_cast<void>(other.Close());
  SaveBinary(MakeLines(), path, {.flush = false});
}

TEST(Journal, WhicheverCallFailsTheEditIsInBothOrInNeither) {
  const TestFolder folder;
  std::set<platform::SystemCall> failed;
  for (std::size_t number = 0;; ++number) {
    const auto path = folder / ("linii" + std::to_string(number) + ".kdp");
    Dataset lines = MakeLines();
    std::optional<Journal> journal;
    bool isReached = false;
    bool threw = false;
    const std::string first = Show(lines);
    {
      const FailingCalls failing(number);
      try {
        journal.emplace(lines, path);
        lines.Set(RowId{0}, "suma", 5_lei);
        lines.Delete(RowId{1});
        journal->Save();
        lines.Insert({{"nume", "Gama"}});
      } catch (const OsError& error) {
        threw = true;
        EXPECT_EQ(error.Code(), 5) << number;
      }
      isReached = failing.Failed();
      if (isReached) {
        failed.insert(failing.Seen().at(number));
      }
    }
    LoadReport report;
    if (std::filesystem::exists(path)) {
      EXPECT_EQ(Show(LoadBinary(path, {}, &report)), journal ? Show(lines) : first) << number;
      EXPECT_EQ(report.lostBytes, 0U) << number;
    } else {
      EXPECT_FALSE(journal) << number;
    }
    if (!journal) {
      journal.emplace(lines, path, kQuick);
    } else if (threw) {
      journal->Save();
    }
    lines.Set(RowId{0}, "suma", 6_lei);
    EXPECT_EQ(Show(LoadBinary(path, {}, &report)), Show(lines)) << number;
    if (!isReached) {
      break;
    }
  }
  using enum platform::SystemCall;
  for (const platform::SystemCall call : {Open, Write, Flush, Query, Lock, Rename, Close}) {
    EXPECT_TRUE(failed.contains(call)) << static_cast<int>(call);
  }
}

TEST(Journal, AfterAFailureEditsAreRefusedUntilASave) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  Dataset lines = MakeLines();
  Journal journal(lines, path);
  {
    const FailingCalls failing(0);
    EXPECT_THROW(lines.Delete(RowId{0}), OsError);
  }
  const auto journalPath = folder / "linii.kdp.log";
  const Text stopped =
      "Journal: " + platform::ShownPath(journalPath.native()) + ": jurnalul s-a oprit; setul de date trebuie salvat";
  ExpectError<Error>([&] { lines.Delete(RowId{0}); }, stopped);
  ExpectError<Error>([&] { lines.Changes().UndoLast(); }, stopped);
  EXPECT_EQ(lines.RowCount(), 2U);
  journal.Save();
  lines.Delete(RowId{0});
  EXPECT_EQ(LoadBinary(path).RowCount(), 1U);
}

TEST(Journal, EntriesOfAnySizeAreReadBack) {
  const TestFolder folder;
  const auto path = folder / "note.kdp";
  Dataset notes("note", {{"id", FieldType::Int32, kKey}, {"text", FieldType::Memo}});
  notes.Insert({{"id", 1}});
  std::uint64_t edits = 0;
  {
    Journal journal(notes, path, kQuick);
    // A reader takes 64 KiB at a time.
    for (std::size_t size = 65'536 - 40; size < 65'536 + 4; ++size, ++edits) {
      notes.Set(RowId{0}, "text", Text(size, static_cast<char>('a' + size % 26)));
    }
  }
  LoadReport report;
  EXPECT_EQ(Load(path, report), Content(notes));
  EXPECT_EQ(report.replayed, edits);
  EXPECT_EQ(report.lostBytes, 0U);
}

TEST(Journal, FlushesOnceASecondWhereThatIsAskedFor) {
  constexpr double kSecond = 1.0 / 86'400;
  const TestFolder folder;
  Dataset lines = MakeLines();
  Journal journal(lines, folder / "linii.kdp", {.flush = JournalFlush::EachSecond, .save = {.flush = false}});
  const struct {
    double now;  // in seconds
    bool isFlushed;
  } kEdits[] = {{0, true}, {0.5, false}, {0.999, false}, {1.001, true}, {1.9, false}, {-3, true}, {-2.5, false}};
  for (const auto& [now, isFlushed] : kEdits) {
    const FixedClock clock(DateTime(46'000 + now * kSecond));
    const FailingCalls watching(FailingCalls::kNone);
    lines.Set(RowId{0}, "suma", Currency::FromRaw(123'456 + static_cast<std::int64_t>(now * 1000)));
    EXPECT_EQ(std::ranges::count(watching.Seen(), platform::SystemCall::Flush), isFlushed ? 1 : 0) << now;
  }
}

TEST(Journal, FlushesAtItsEndWhatIsInItAndNotWhereNobodyWantsIt) {
  const auto flushes = [](JournalFlush flush, bool stopped) {
    const TestFolder folder;
    Dataset lines = MakeLines();
    std::optional<Journal> journal(std::in_place, lines, folder / "linii.kdp",
                                   JournalOptions{.flush = flush, .save = {.flush = false}});
    if (stopped) {
      const FailingCalls failing(0);
      EXPECT_THROW(lines.Delete(RowId{0}), OsError);
    }
    const FailingCalls watching(FailingCalls::kNone);
    journal.reset();
    return std::ranges::count(watching.Seen(), platform::SystemCall::Flush);
  };
  EXPECT_EQ(flushes(JournalFlush::EachEdit, false), 1);
  EXPECT_EQ(flushes(JournalFlush::EachEdit, true), 0);
  EXPECT_EQ(flushes(JournalFlush::Never, false), 0);
}

TEST(Journal, WantsNoMemoryThatTheEditThenLacks) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  bool hasFailed = true;
  for (std::uint64_t failing = 0; hasFailed; ++failing) {
    Dataset lines = MakeLines();
    Journal journal(lines, path, kQuick);
    const std::string before = Show(lines);
    Allocations::FailFrom(failing);
    try {
      lines.Insert({{"nume", "un nume de peste cincisprezece litere"}, {"suma", 2_lei}});
      hasFailed = Allocations::Stop();
    } catch (const std::bad_alloc&) {
      ASSERT_TRUE(Allocations::Stop());
      EXPECT_EQ(Show(lines), before);
    }
    EXPECT_EQ(Show(LoadBinary(path)), Show(lines)) << failing;
  }
}

/// A log with one entry that is sealed as it should be.
void WriteLog(const std::filesystem::path& log, std::string_view payload) {
  std::string bytes = ReadWhole(log).substr(0, packet::kJournalHeaderSize);
  std::uint32_t before = 0;
  std::memcpy(&before, bytes.data() + bytes.size() - 4, 4);
  const auto size = static_cast<std::uint32_t>(payload.size());
  std::string entry(reinterpret_cast<const char*>(&size), 4);
  entry += payload;
  const std::uint32_t checksum = Crc32c(std::as_bytes(std::span(entry)), before);
  WriteWhole(log, bytes + entry + std::string(reinterpret_cast<const char*>(&checksum), 4));
}

TEST(Journal, AWholeEntryThatNoEditWroteIsRefused) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  Dataset lines = MakeLines();
  Journal(lines, path, kQuick).Flush();
  const auto text = [](std::initializer_list<int> bytes) { return std::string(bytes.begin(), bytes.end()); };
  const struct {
    std::string payload;
    TextView message;
  } kCases[] = {
      {text({}), "o inregistrare se termina inainte de vreme"},
      {text({7, 0, 0, 0, 0}), "jurnalul are o inregistrare de un fel necunoscut"},
      {text({2, 9, 0, 0, 0}), "Dataset \"linii\": randul 9 nu exista"},
      {text({2, 0, 0, 0, 0, 0}), "o inregistrare are octeti in plus"},
      {text({4, 9, 0, 0, 0}), "jurnalul revine la o modificare care nu exista"},
      {text({1, 0, 0, 0, 0, 1, 0, 3, 0x80}), "jurnalul are un camp care nu exista"},
      {text({1, 0, 0, 0, 0, 1, 0, 1, 0, 9, 0, 0, 0}), "o inregistrare se termina inainte de vreme"},
      {text({0, 9, 0, 0, 0, 0, 0}), "un rand nou are alt numar decat trebuie"},
      {text({1, 0, 0, 0, 0, 1, 0, 0, 0x80}), "Dataset \"linii\": campul \"id\" trebuie completat"},
  };
  for (const auto& [payload, message] : kCases) {
    WriteLog(folder / "linii.kdp.log", payload);
    try {
      static_cast<void>(LoadBinary(path));
      ADD_FAILURE() << message;
    } catch (const PacketError& error) {
      EXPECT_EQ(error.Offset(), packet::kJournalHeaderSize);
      EXPECT_TRUE(std::string_view(error.what()).ends_with("linii.kdp.log: octetul 28: " + Text(message)))
          << error.what();
    }
  }
  WriteLog(folder / "linii.kdp.log", text({2, 0, 0, 0, 0}));
  EXPECT_EQ(LoadBinary(path).RowCount(), 1U);
}

}  // namespace
}  // namespace kiv
