#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include "kivtools/WinUtil/FileLists.h"
#include "platform/FailingCalls.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const Text kSeparator(1, platform::kPathSeparator);

/// A root, and the paths below it as they are listed.
class FileLists : public testing::Test {
 protected:
  void Make(const path& name) {
    std::filesystem::create_directories((folder_ / name).parent_path());
    WriteWhole(folder_ / name, "x");
  }
  [[nodiscard]] Text Root() const { return platform::TextFromPath(folder_.Path()); }
  [[nodiscard]] Text Below(const path& name) const { return Root() + kSeparator + platform::TextFromPath(name); }
  [[nodiscard]] StringList Names(const StringList& files) const {
    StringList names;
    for (const Text& file : files) {
      EXPECT_EQ(file.substr(0, Root().size() + 1), Root() + kSeparator);
      names.push_back(path(file.substr(Root().size() + 1)).generic_string());
    }
    return names;
  }

  TestFolder folder_;
};

TEST_F(FileLists, TakeFilesByTheirExtension) {
  for (const char* const name : {"a.dbf", "B.DbF", "c.dbf.bak", "arhiva.tar.gz", "fara", ".ascuns"}) {
    Make(name);
  }
  struct Case {
    StringList extensions;
    StringList expected;
  };
  const std::vector<Case> cases = {
      {{"DBF"}, {"a.dbf", "B.DbF"}},
      {{"dbf", "dbf"}, {"a.dbf", "B.DbF"}},
      {{".dbf"}, {}},
      {{"db"}, {}},
      {{"dbf2"}, {}},
      {{"gz", "bak"}, {"arhiva.tar.gz", "c.dbf.bak"}},
      {{"tar.gz"}, {}},
      {{""}, {"fara"}},
      {{"ascuns"}, {".ascuns"}},
      {{"x", "*"}, {"a.dbf", "B.DbF", "c.dbf.bak", "arhiva.tar.gz", "fara", ".ascuns"}},
      {{"*.dbf"}, {}},
      {{}, {}},
  };
  for (const Case& row : cases) {
    EXPECT_THAT(Names(InitFileList(Root(), row.extensions)), testing::UnorderedElementsAreArray(row.expected))
        << testing::PrintToString(row.extensions);
  }
}

TEST_F(FileLists, GoAsDeepAsAsked) {
  Make("a.txt");
  Make("s/b.txt");
  Make("s/t/c.txt");
  EXPECT_THAT(InitFileListMaxDepth(Root(), {"*"}, -1), IsEmpty());
  EXPECT_THAT(InitFileListMaxDepth(Root(), {"*"}, 0), ElementsAre(Below("a.txt")));
  EXPECT_THAT(Names(InitFileListMaxDepth(Root(), {"*"}, 1)), UnorderedElementsAre("a.txt", "s/b.txt"));
  EXPECT_THAT(Names(InitFileListMaxDepth(Root(), {"*"}, 2)), UnorderedElementsAre("a.txt", "s/b.txt", "s/t/c.txt"));
  EXPECT_THAT(InitFileList(Root(), {"*"}), InitFileListMaxDepth(Root(), {"*"}, INT32_MAX));
  EXPECT_EQ(InitFileList(Root() + kSeparator, {"*"}), InitFileList(Root(), {"*"})) << "one separator";
}

/// The order of the system's own listing, with each sub-folder's content in the sub-folder's place.
void AppendInOrder(const path& folder, StringList& list) {
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_directory() && !entry.is_symlink()) {
      AppendInOrder(entry.path(), list);
    } else {
      list.push_back(platform::TextFromPath(entry.path()));
    }
  }
}

TEST_F(FileLists, HaveTheFileSystemsOrder) {
  for (int i = 0; i < 300; ++i) {
    const std::string number = std::to_string(i);
    Make("f" + number);
    Make("s" + number + "/a");
    Make("s" + number + "/t/b");
  }
  StringList expected;
  AppendInOrder(folder_.Path(), expected);
  EXPECT_EQ(expected.size(), 900U);
  EXPECT_EQ(InitFileList(Root(), {"*"}), expected);
}

TEST_F(FileLists, AreEmptyWhereNothingCanBeRead) {
  Make("file.txt");
  EXPECT_THAT(InitFileList("", {"*"}), IsEmpty());
  EXPECT_THAT(InitFileList(Below("none"), {"*"}), IsEmpty());
  EXPECT_THAT(InitFileList(Below("file.txt"), {"*"}), IsEmpty());
  EXPECT_THAT(InitFileList(Root() + Text(1, '\0') + "x", {"*"}), IsEmpty());
}

TEST_F(FileLists, LackNoMoreThanOneFailedCallWouldHaveGiven) {
  Make("a.txt");
  Make("s/b.txt");
  Make("t/c.txt");
  std::size_t calls = 0;
  {
    const FailingCalls counting(FailingCalls::kNone);
    EXPECT_EQ(InitFileList(Root(), {"txt"}).size(), 3U);
    calls = counting.Seen().size();
  }
  std::size_t whole = 0;
  for (std::size_t failing = 0; failing < calls; ++failing) {
    const FailingCalls fails(failing);
    const StringList files = InitFileList(Root(), {"txt"});
    EXPECT_TRUE(fails.Failed());
    const bool isFirst = failing < 2;  // the root's own opening and list
    EXPECT_GE(files.size(), isFirst ? 0U : 1U) << failing;
    whole += files.size() == 3 ? 1U : 0U;
    EXPECT_THAT(StringList({"a.txt", "s/b.txt", "t/c.txt"}), testing::IsSupersetOf(Names(files)));
  }
  EXPECT_GE(whole, 3U) << "closing a folder takes nothing away";
}

}  // namespace
}  // namespace kiv
