#include "Expect.h"
#include "PacketBytes.h"
#include "SameRows.h"
#include "platform/FailingCalls.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

Dataset MakeDataset(int rows) {
  Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}, {"partener", FieldType::Text, 40}});
  for (int i = 0; i < rows; ++i) {
    dataset.Insert({{"partener", "Alfa"}});
  }
  return dataset;
}

auto CountOfFiles(const TestFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.Path()), std::filesystem::directory_iterator());
}

TEST(PacketFile, IsSavedAndLoaded) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  const Dataset dataset = MakeDataset(20'000);
  SaveBinary(dataset, path);
  ExpectSameRows(dataset, LoadBinary(path));
  SaveBinary(MakeDataset(2), path, {.backup = true, .flush = false});
  EXPECT_EQ(LoadBinary(path).RowCount(), 2U);
  ExpectSameRows(dataset, LoadBinary(folder / "linii.kdp.bak"));
  EXPECT_THROW(static_cast<void>(LoadBinary(folder / "lipsa.kdp")), OsError);
}

TEST(PacketFile, DamageIsToldWithTheFilesName) {
  const TestFolder folder;
  WriteWhole(folder / "stricat.kdp", "oricum altceva");
  try {
    static_cast<void>(LoadBinary(folder / "stricat.kdp"));
    FAIL();
  } catch (const PacketError& error) {
    EXPECT_TRUE(std::string_view(error.what()).ends_with("stricat.kdp: antetul, octetul 0: nu este un pachet de date"));
  }
}

TEST(PacketFile, WhicheverCallFailsTheFileIsTheOldOneOrTheNewOne) {
  const TestFolder folder;
  const auto path = folder / "linii.kdp";
  const Dataset before = MakeDataset(3);
  const Dataset after = MakeDataset(20'000);
  for (std::size_t number = 0;; ++number) {
    SaveBinary(before, path, {.flush = false});
    bool failed = false;
    bool threw = false;
    {
      const FailingCalls failing(number);
      try {
        SaveBinary(after, path);
      } catch (const OsError& error) {
        threw = true;
        EXPECT_EQ(error.Code(), 5) << number;
      }
      failed = failing.Failed();
    }
    const std::size_t rows = LoadBinary(path).RowCount();
    EXPECT_TRUE(rows == 20'000 || (threw && rows == 3)) << number;
    EXPECT_EQ(CountOfFiles(folder), 1) << number;
    if (!failed) {
      EXPECT_GT(number, 6U);
      break;
    }
  }
}

TEST(PacketFile, WhicheverCallFailsALoadSaysSo) {
  const TestFolder folder;
  SaveBinary(MakeDataset(20'000), folder / "linii.kdp");
  std::size_t number = 0;
  for (;; ++number) {
    const FailingCalls failing(number);
    try {
      EXPECT_EQ(LoadBinary(folder / "linii.kdp").RowCount(), 20'000U);
      if (!failing.Failed()) {
        break;
      }
      EXPECT_EQ(failing.Seen().at(number), platform::SystemCall::Close) << number;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), 5) << number;
    }
  }
  EXPECT_GT(number, 3U);
}

}  // namespace
}  // namespace kiv
