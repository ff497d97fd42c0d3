#include <gtest/gtest.h>

#include "Expect.h"
#include "core/Units.h"
#include "kivtools/CEVersionInfo.h"
#include "kivtools/DatasetLib.h"
#include "kivtools/Package.h"
#include "kivtools/UDepanarePointer.h"
#include "kivtools/WideTools.h"
#include "kivtools/WinUtil.h"
#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Xml.h"
#include "package/OnceOnly.h"
#include "package/StartOrder.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

bool TrackerRuns() {
  try {
    const int unknown = 0;
    return !IsValid(&unknown);
  } catch (const Error&) {
    return false;
  }
}

TEST(Package, TableHas79CallableEntries) {
  const PackageInfoTable& table = *GetPackageInfoTable();
  ASSERT_EQ(table.unitCount, 79);
  for (std::int32_t i = 0; i < table.unitCount; ++i) {
    ASSERT_NE(table.units[i].initialization, nullptr) << i;
    ASSERT_NE(table.units[i].finalization, nullptr) << i;
  }
}

Text start_log;
bool third_fails = false;

constexpr UnitEntry kLogged[] = {
    {[] { start_log += "+1"; }, [] { start_log += "-1"; }},
    {[] { start_log += "+2"; }, [] { start_log += "-2"; }},
    {[] {
       if (third_fails) {
         throw Error("no start");
       }
       start_log += "+3";
     },
     [] { start_log += "-3"; }},
    {[] { start_log += "+4"; }, [] { start_log += "-4"; }},
};

TEST(Package, UnitsStartInOrderAndStopInTheReverseAlsoWhenOneFails) {
  InitializeUnits(kLogged);
  FinalizeUnits(kLogged);
  EXPECT_EQ(start_log, "+1+2+3+4-4-3-2-1");
  start_log = "";
  third_fails = true;
  ExpectError<Error>([] { InitializeUnits(kLogged); }, "no start");
  EXPECT_EQ(start_log, "+1+2-2-1");
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
    EXPECT_EQ(FindDatasetEngine("DatasetLib")->Formats(), (StringList{"kdp", "xml", "csv"}));
    const TestFolder folder;
    const Dataset lines("linii", {{"id", FieldType::AutoInc, kKey}});
    SaveBinary(lines, folder / "linii.kdp");
    SaveXml(lines, folder / "linii.XML");
    SaveCsv(lines, folder / "linii.csv");
    for (const char* name : {"linii.kdp", "linii.XML", "linii.csv"}) {
      EXPECT_EQ(FindDatasetEngine("DatasetLib")->Load(folder / name).Name(), "linii");
    }

    TempFilePath = "elsewhere";
    Finalize();
    EXPECT_EQ(TempFilePath, "elsewhere") << "one initialization is still open";
    Finalize();
    EXPECT_EQ(TempFilePath, "");
    EXPECT_EQ(InfoStr[0], "");
    EXPECT_EQ(NumeLuna[0], "");
  }
}

TEST(Package, EachOwnUnitHasItsPlaceInTheTable) {
  // What shows that a unit has started; those that only count show nothing.
  const struct {
    int position;  // from 1
    const char* name;
    UnitEntry entry;
    bool (*isRunning)();
  } units[] = {
      {70, "DatasetLib", OnceOnly<units::DatasetLib>::kEntry, nullptr},  // what is registered stays
      {71, "Shfolder", OnceOnly<units::Shfolder>::kEntry, nullptr},
      {72, "CEVersionInfo", OnceOnly<units::CEVersionInfo>::kEntry, [] { return !InfoStr[0].empty(); }},
      {73, "WinUtil", OnceOnly<units::WinUtil>::kEntry, [] { return !TempFilePath.empty(); }},
      {74, "LargeFontScaler", OnceOnly<units::LargeFontScaler>::kEntry, nullptr},
      {75, "BmpRoutines", OnceOnly<units::BmpRoutines>::kEntry, nullptr},
      {76, "WideTools", OnceOnly<units::WideTools>::kEntry, nullptr},  // what it found out stays
      {77, "UTreeAVL2", OnceOnly<units::UTreeAVL2>::kEntry, nullptr},
      {78, "UDepanarePointer", OnceOnly<units::UDepanarePointer>::kEntry, TrackerRuns},
      {79, "UPanelElastic", OnceOnly<units::UPanelElastic>::kEntry, nullptr},
  };
  Initialize();  // afterwards nothing is left of what is there from load
  Finalize();
  int position = 69;
  for (const auto& unit : units) {
    EXPECT_EQ(unit.position, ++position);
    const UnitEntry& inTable = GetPackageInfoTable()->units[unit.position - 1];
    EXPECT_EQ(inTable.initialization, unit.entry.initialization) << unit.name;
    EXPECT_EQ(inTable.finalization, unit.entry.finalization) << unit.name;
    if (unit.isRunning != nullptr) {
      EXPECT_FALSE(unit.isRunning()) << unit.name;
      inTable.initialization();
      EXPECT_TRUE(unit.isRunning()) << unit.name;
      inTable.finalization();
      EXPECT_FALSE(unit.isRunning()) << unit.name;
    }
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
