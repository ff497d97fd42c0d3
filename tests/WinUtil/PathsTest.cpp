#include <gmock/gmock.h>

#include <filesystem>
#include <random>

#include "Expect.h"
#include "kivtools/Host/Headless.h"
#include "kivtools/WinUtil/Paths.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

/// By the rule, step by step.
Text PlainRemoveDoubleSlash(Text path) {
  const bool network = path.starts_with("\\\\");
  if (network) {
    path.erase(0, 2);
  }
  std::ranges::replace(path, '/', '\\');
  for (std::size_t at = path.find("\\\\"); at != Text::npos; at = path.find("\\\\")) {
    path.erase(at, 1);
  }
  return network ? "\\\\" + path : path;
}

TEST(RemoveDoubleSlash, RunsShrinkToOneAndANetworkPathKeepsItsMark) {
  const struct {
    TextView path;
    TextView expected;
  } cases[] = {
      {"", ""},
      {R"(C://a\\\b/c)", R"(C:\a\b\c)"},
      {R"(\\server\\share//x)", R"(\\server\share\x)"},
      {R"(\\)", R"(\\)"},
      {R"(\\\)", R"(\\\)"},
      {R"(\\\\\a)", R"(\\\a)"},
      {R"(//server)", R"(\server)"},
      {R"(\/a)", R"(\a)"},
      {"a", "a"},
  };
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(RemoveDoubleSlash(path), expected) << path;
  }
  std::mt19937 random(7);
  for (int i = 0; i < 20'000; ++i) {
    Text path(random() % 12, '\0');
    for (char& letter : path) {
      letter = "\\/a:"[random() % 4];
    }
    ASSERT_EQ(RemoveDoubleSlash(path), PlainRemoveDoubleSlash(path)) << path;
  }
}

TEST(FolderWithSeparator, IsThePathUpToItsLastSeparator) {
#define KIV_WINDOWS (std::filesystem::path::preferred_separator == '\\')
  EXPECT_EQ(platform::FolderWithSeparator("a/b/c"), "a/b/");
  EXPECT_EQ(platform::FolderWithSeparator("c"), "");
  EXPECT_EQ(platform::FolderWithSeparator("/"), "/");
  EXPECT_EQ(platform::FolderWithSeparator("a\\b"), KIV_WINDOWS ? "a\\" : "");
  EXPECT_EQ(platform::FolderWithSeparator("c:b"), KIV_WINDOWS ? "c:" : "");
}

/// TempFilePath as it was, after the test.
class TemporaryNames : public testing::Test {
 protected:
  ~TemporaryNames() override { TempFilePath = before_; }

  [[nodiscard]] Text Named(TextView name) const {
    return platform::TextFromPath(folder_.Path()) + platform::kPathSeparator + Text(name);
  }

  TestFolder folder_;

 private:
  Text before_ = TempFilePath;
};

TEST_F(TemporaryNames, AreThoseThatNothingHasYet) {
  WriteWhole(folder_.Path() / "raport_1.txt", "");
  std::filesystem::create_directory(folder_.Path() / "raport_2.txt");
  const Text folder = platform::TextFromPath(folder_.Path());
  for (const TextView end : {"", "/", "\\"}) {
    TempFilePath = folder + Text(end);
    EXPECT_EQ(GetNewTempFileName("raport", "txt"), Named("raport_3.txt"));
    EXPECT_EQ(TempFilePath, folder);
  }
  EXPECT_EQ(GetNewTempFileName("x", ""), Named("x_1."));
  EXPECT_EQ(GetNewTempFileName("", "txt"), Named("_1.txt"));
  EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "raport_3.txt"));
  TempFilePath = folder + "//";
  static_cast<void>(GetNewTempFileName("x", ""));
  EXPECT_EQ(TempFilePath, folder + "/");
}

TEST_F(TemporaryNames, InAFolderThatIsNotThereAreFree) {
  TempFilePath = Named("none");
  EXPECT_EQ(GetNewTempFileName("x", "y"), Named("none") + platform::kPathSeparator + "x_1.y");
}

TEST(ReadWindowsTempPath, EndsInASeparator) {
  EXPECT_TRUE(ReadWindowsTempPath().ends_with(platform::kPathSeparator));
}

/// A host whose device 5 answers each question with a number of its own.
class HostWithDevice : public host::Host {
 public:
  HostWithDevice() { host::Install(*this); }
  host::Screen& GetScreen() override { return screen_; }

 private:
  class DeviceScreen : public host::headless::Screen {
   public:
    [[nodiscard]] std::int32_t Capability(Handle device, host::DeviceCapability capability) const override {
      return device == 5 ? -static_cast<std::int32_t>(capability) : 0;
    }
  };
  DeviceScreen screen_;
};

TEST(DeviceInfo, NamesTheEightSizesInOrder) {
  const HostWithDevice host;
  EXPECT_EQ(DeviceInfo(5),
            "HORZSIZE=-4; VERTSIZE=-6; HORZRES=-8; VERTRES=-10; PHYSICALWIDTH=-110; PHYSICALHEIGHT=-111; "
            "PHYSICALOFFSETX=-112; PHYSICALOFFSETY=-113");
}

/// The text with "<sep>" in place of the system's separator, so that one expectation serves both systems.
Text Neutral(Text text) {
  for (std::size_t at = text.find(platform::kPathSeparator); at != Text::npos;
       at = text.find(platform::kPathSeparator)) {
    text.replace(at, 1, "<sep>");
  }
  return text;
}

Text ReplacedAll(Text text, const Text& from, TextView to) {
  for (std::size_t at = text.find(from); at != Text::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TEST(ConnectionStringForMdb, NamesTheDatabaseAndTheFileThatItWrites) {
  const TestFolder test;
  const std::filesystem::path folder = test.Path() / "a" / "100%name% b";
  const Text folderText = platform::TextFromPath(folder);
  const Text connection = ConnectionStringForMdb(folderText + platform::kPathSeparator + "firma.mdb");
  EXPECT_EQ(Neutral(ReplacedAll(connection, folderText, "<folder>")),
            "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=\"DBQ=<folder><sep>firma.mdb;"
            "DefaultDir=<folder>;Driver={Microsoft Access Driver (*.mdb)};DriverId=25;FIL=MS Access;"
            "FILEDSN=<folder><sep>auto_dsn.dsn;MaxBufferSize=2048;MaxScanRows=8;PageTimeout=5;SafeTransactions=0;"
            "Threads=3;UID=admin;UserCommitSync=Yes;\"");
  const Text expected =
      "[ODBC]\r\nDRIVER=Microsoft Access Driver (*.mdb)\r\nUID=admin\r\nUserCommitSync=Yes\r\nThreads=3\r\n"
      "SafeTransactions=0\r\nPageTimeout=5\r\nMaxScanRows=8\r\nMaxBufferSize=2048\r\nFIL=MS Access\r\nDriverId=25\r\n"
      "DefaultDir=<folder>\r\nDBQ=<folder><sep>firma.mdb\r\n";
  EXPECT_EQ(Neutral(ReplacedAll(ReadWhole(folder / "auto_dsn.dsn"), folderText, "<folder>")), expected);

  WriteWhole(folder / "auto_dsn.dsn", Text(10'000, 'x'));
  EXPECT_EQ(ConnectionStringForMdb(folderText + platform::kPathSeparator + "firma.mdb"), connection);
  EXPECT_EQ(Neutral(ReplacedAll(ReadWhole(folder / "auto_dsn.dsn"), folderText, "<folder>")), expected);
}

TEST(ConnectionStringForMdb, WhereNothingCanBeWrittenSaysWhy) {
  const TestFolder test;
  WriteWhole(test / "file", "");
  const Text under = platform::TextFromPath(test / "file");
  try {
    static_cast<void>(ConnectionStringForMdb(under + platform::kPathSeparator + "firma.mdb"));
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("ConnectionStringForMdb: " + under));
    EXPECT_NE(error.Code(), 0);
  }
  ExpectError<Error>([] { static_cast<void>(ConnectionStringForMdb("a\nDRIVER=x")); },
                     "ConnectionStringForMdb: calea contine un sfarsit de linie sau un zero: \"a\nDRIVER=x\"");
}

}  // namespace
}  // namespace kiv
