#include <gtest/gtest.h>

#include "kivtools/CEVersionInfo.h"
#include "kivtools/DatasetLib.h"
#include "kivtools/Package.h"
#include "kivtools/WideTools.h"
#include "kivtools/WinUtil.h"
#include "package/OnceOnly.h"

namespace kiv {
namespace {

TEST(Package, TableHas79CallableEntries) {
  const PackageInfoTable& table = *GetPackageInfoTable();
  ASSERT_EQ(table.unitCount, 79);
  for (std::int32_t i = 0; i < table.unitCount; ++i) {
    ASSERT_NE(table.units[i].initialization, nullptr) << i;
    ASSERT_NE(table.units[i].finalization, nullptr) << i;
  }
}

TEST(Package, GlobalsLiveBetweenFirstInitializeAndLastFinalize) {
  EXPECT_EQ(NumeLuna[11], "Decembrie") << "constant data, there from load";
  EXPECT_EQ(TempFilePath, "");
  for (int round = 0; round < 2; ++round) {  // a finalized library can be started again
    Initialize();
    Initialize();
    EXPECT_EQ(InfoStr[5], "LegalTradeMarks");
    EXPECT_EQ(NumeLuna[0], "Ianuarie");
    EXPECT_EQ(NumeLunaScurt[10], "nov");
    EXPECT_EQ(TempFilePath, ReadWindowsTempPath());
    EXPECT_TRUE(page_1250_ok);
    EXPECT_EQ(page_1250_replace, 1250);
    ASSERT_NE(FindDatasetEngine("DatasetLib"), nullptr);
    EXPECT_TRUE(FindDatasetEngine("DatasetLib")->Formats().empty());

    TempFilePath = "elsewhere";
    Finalize();
    EXPECT_EQ(TempFilePath, "elsewhere") << "one initialization is still open";
    Finalize();
    EXPECT_EQ(TempFilePath, "");
    EXPECT_EQ(InfoStr[0], "");
    EXPECT_EQ(NumeLuna[0], "");
  }
}

TEST(Package, LoadEntryRecordsTheModule) {
  PackageLoadEntry(0x1000, 1);
  EXPECT_TRUE(GetPackageModule().isLibrary);
  EXPECT_TRUE(GetPackageModule().attached);
  PackageLoadEntry(0x1000, 2);  // a thread attaches
  EXPECT_TRUE(GetPackageModule().attached);
  PackageLoadEntry(0x1000, 0);
  EXPECT_FALSE(GetPackageModule().attached);
  EXPECT_EQ(GetPackageModule().handle, 0x1000U);
}

struct CountingUnit {
  static inline int starts = 0;
  static inline int stops = 0;
  static inline bool fail = false;
  static void StartUp() {
    if (fail) {
      throw Error("no start");
    }
    ++starts;
  }
  static void ShutDown() { ++stops; }
};

TEST(OnceOnly, RunsBodiesOnFirstAndLastAndForgetsAFailedStart) {
  using Unit = OnceOnly<CountingUnit>;
  CountingUnit::fail = true;
  EXPECT_THROW(Unit::Initialize(), Error);
  CountingUnit::fail = false;
  Unit::Initialize();
  Unit::Initialize();
  EXPECT_EQ(CountingUnit::starts, 1);
  Unit::Finalize();
  EXPECT_EQ(CountingUnit::stops, 0);
  Unit::Finalize();
  EXPECT_EQ(CountingUnit::stops, 1);
}

}  // namespace
}  // namespace kiv
