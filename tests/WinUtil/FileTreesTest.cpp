#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <map>

#include "Expect.h"
#include "kivtools/Host/Headless.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

Text TextOf(const path& name) {
  path native = name;
  return platform::TextFromPath(native.make_preferred());
}

/// What is in a tree: the content of each file, "/" for each folder.
std::map<std::string, std::string> TreeOf(const path& root) {
  std::map<std::string, std::string> tree;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    const std::string name = entry.path().lexically_relative(root).generic_string();
    tree[name] = entry.is_directory() ? "/" : ReadWhole(entry.path());
  }
  return tree;
}

class FileTrees : public testing::Test {
 protected:
  FileTrees() {
    label_.OnRepaint([this](const Text& caption) { shown_.push_back(caption); });
  }

  void Make(const path& name, std::string_view content) {
    std::filesystem::create_directories((folder_ / name).parent_path());
    WriteWhole(folder_ / name, content);
  }
  [[nodiscard]] Text At(const path& name) const { return TextOf(folder_ / name); }
  void Copy(const path& source, const path& destination, const StringList& extensions,
            std::int32_t maxWidth = 100'000) {
    RecursiveCopyWithExt(At(source), At(destination), extensions, label_, maxWidth);
  }

  TestFolder folder_;
  host::headless::Label label_{nullptr, "lblFisier"};
  StringList shown_;
};

using Tree = std::map<std::string, std::string>;

TEST_F(FileTrees, AreCopiedByExtension) {
  Make("sursa/a.txt", "A");
  Make("sursa/B.TXT", "B");
  Make("sursa/c.txt.bak", "C");
  Make("sursa/fara", "D");
  Make("sursa/s/t/e.txt", "");
  std::filesystem::create_directory(folder_ / "sursa" / "gol");
  const Tree folders = {{"s", "/"}, {"s/t", "/"}, {"gol", "/"}};
  struct Case {
    StringList extensions;
    Tree files;
  };
  const std::vector<Case> cases = {
      {{"txt"}, {{"a.txt", "A"}, {"B.TXT", "B"}, {"s/t/e.txt", ""}}},
      {{"TXT", ".txt", "*.txt"}, {}},
      {{""}, {{"fara", "D"}}},
      {{"bak", ""}, {{"c.txt.bak", "C"}, {"fara", "D"}}},
      {{"*"}, {{"a.txt", "A"}, {"B.TXT", "B"}, {"c.txt.bak", "C"}, {"fara", "D"}, {"s/t/e.txt", ""}}},
      {{}, {}},
  };
  for (const Case& row : cases) {
    std::filesystem::remove_all(folder_ / "copii");
    Copy("sursa", "copii/noi", row.extensions);
    Tree expected = folders;
    expected.insert(row.files.begin(), row.files.end());
    EXPECT_EQ(TreeOf(folder_ / "copii" / "noi"), expected) << testing::PrintToString(row.extensions);
  }
}

TEST_F(FileTrees, AreCopiedOverFormerOnes) {
  Tree expected = {{"altul", "ramane"}};
  Make("copie/altul", "ramane");
  // About the size from which a new file is written beside its name, with former files between those that have none.
  for (const std::size_t size : {0U, 3U, 65'535U, 65'536U, 65'537U, 200'000U}) {
    for (int copy = 0; copy < 4; ++copy) {
      const std::string name = std::to_string(size) + "-" + std::to_string(copy);
      expected[name] = std::string(size, static_cast<char>('a' + copy));
      Make(path("sursa") / name, expected[name]);
      if (copy % 2 == 1) {
        Make(path("copie") / name, copy == 1 ? "vechi" : std::string(300'000, 'v'));
      }
    }
  }
  Copy("sursa", "copie", {"*"});
  EXPECT_EQ(TreeOf(folder_ / "copie"), expected);
}

TEST_F(FileTrees, KeepTheTimesOfFiles) {
  Make("sursa/a", "x");
  const auto moment = std::filesystem::last_write_time(folder_ / "sursa" / "a") - std::chrono::hours(1000);
  std::filesystem::last_write_time(folder_ / "sursa" / "a", moment);
  for (int round = 0; round < 2; ++round) {
    Copy("sursa", "copie", {"*"});
    EXPECT_EQ(std::filesystem::last_write_time(folder_ / "copie" / "a"), moment);
  }
}

TEST_F(FileTrees, ShowEachFileBeforeItIsCopied) {
  Make("sursa/a.txt", "A");
  Make("sursa/b.dbf", "B");
  Make("sursa/sub/c.txt", "C");
  Copy("sursa", "copie", {"txt"});
  // 8 pixels a letter: the path of a sub-folder is fitted to 350 pixels, that of the first one to what was asked.
  EXPECT_THAT(shown_, testing::Contains(At("sursa/a.txt")));
  EXPECT_THAT(shown_, testing::SizeIs(2));
  for (const Text& caption : shown_) {
    EXPECT_TRUE(caption == At("sursa/a.txt") || (caption.size() * 8 <= 350 && caption.ends_with("c.txt"))) << caption;
  }
}

TEST_F(FileTrees, ServeTheApplicationAtTheStartOfEachFolder) {
  class Busy : public host::Host, public host::headless::Application {
   public:
    host::Application& GetApplication() override { return *this; }
    [[nodiscard]] bool OnMainThread() const override { return onMainThread; }
    bool onMainThread = true;
  } application;
  int served = 0;
  application.OnMessages([&] { ++served; });
  host::Install(application);
  Make("sursa/s/t/a", "x");
  Copy("sursa", "copie", {});
  EXPECT_EQ(served, 3);
  application.onMainThread = false;
  Copy("sursa", "copie", {});
  EXPECT_EQ(served, 3) << "windows are served on their own thread only";
}

TEST_F(FileTrees, SkipTheFilesOfFoldersWithATextInTheirPath) {
  Make("sursa/a.dbf", "1");
  Make("sursa/GUNOI/x.dbf", "2");
  Make("sursa/GUNOI/sub/y.dbf", "3");
  Make("sursa/gunoier/z.dbf", "4");
  const Tree folders = {{"GUNOI", "/"}, {"GUNOI/sub", "/"}, {"gunoier", "/"}};
  const Text slash = TextOf("/");
  struct Case {
    Text skip;
    StringList extensions;
    Tree files;
  };
  const Tree all = {{"a.dbf", "1"}, {"GUNOI/x.dbf", "2"}, {"GUNOI/sub/y.dbf", "3"}, {"gunoier/z.dbf", "4"}};
  const std::vector<Case> cases = {
      {"", {"dbf"}, all},
      {"  ", {"dbf"}, all},
      {" Gunoi ", {"dbf"}, {{"a.dbf", "1"}}},
      {slash + "gunoi" + slash, {"dbf"}, {{"a.dbf", "1"}, {"gunoier/z.dbf", "4"}}},
      {slash + "Sub" + slash, {"dbf"}, {{"a.dbf", "1"}, {"GUNOI/x.dbf", "2"}, {"gunoier/z.dbf", "4"}}},
      {"sursa" + slash, {"dbf"}, {}},
      {"x.dbf", {"dbf"}, all},
      {"", {"*"}, {}},
  };
  for (const Case& row : cases) {
    std::filesystem::remove_all(folder_ / "copie");
    RecursiveCopyWithExtSkipFolders(At("sursa"), At("copie"), row.extensions, label_, row.skip, 350);
    Tree expected = folders;
    expected.insert(row.files.begin(), row.files.end());
    EXPECT_EQ(TreeOf(folder_ / "copie"), expected) << row.skip;
  }
}

TEST_F(FileTrees, AreNotCopiedIntoThemselves) {
  Make("sursa/a", "A");
  Make("sursa/s/b", "B");
  Copy("sursa", "sursa/s/copie", {"*"});
  EXPECT_EQ(TreeOf(folder_ / "sursa" / "s" / "copie"), (Tree{{"a", "A"}, {"s", "/"}, {"s/b", "B"}}));
  const Tree before = TreeOf(folder_ / "sursa");
  Copy("sursa", "sursa", {"*"});
  EXPECT_EQ(TreeOf(folder_ / "sursa"), before);
}

TEST_F(FileTrees, AreLeftAloneByAnEmptyPath) {
  Make("sursa/a", "A");
  RecursiveCopyWithExt("", At("copie"), {"*"}, label_, 350);
  RecursiveCopyWithExt(At("sursa"), "", {"*"}, label_, 350);
  EXPECT_THAT(shown_, testing::IsEmpty());
  Copy("nu-exista", "copie", {"*"});
  EXPECT_EQ(TreeOf(folder_.Path()), (Tree{{"sursa", "/"}, {"sursa/a", "A"}, {"copie", "/"}}));
}

TEST_F(FileTrees, AreDeletedWithAllThatIsInThem) {
  Make("lucru/a", "A");
  Make("lucru/s/t/protejat", "B");
  Make("altele/c", "C");
  std::filesystem::permissions(folder_ / "lucru/s/t/protejat", std::filesystem::perms::owner_read);
  RecursiveDelete(At("lucru") + TextOf("/") + TextOf("/"));
  RecursiveDelete(At("nu-exista"));
  RecursiveDelete(At("altele/c"));
  RecursiveDelete("");
  EXPECT_EQ(TreeOf(folder_.Path()), (Tree{{"altele", "/"}, {"altele/c", "C"}}));
}

TEST_F(FileTrees, AskOfSingleFiles) {
  Make("a", std::string(5000, 'x'));
  Make("protejat", "");
  std::filesystem::permissions(folder_ / "protejat", std::filesystem::perms::owner_read);
  EXPECT_EQ(DimensiuneFisier(At("a")), 5000);
  EXPECT_EQ(DimensiuneFisier(At("nu-exista")), 0);
  EXPECT_EQ(DimensiuneFisier(TextOf(folder_.Path())), 0);
  EXPECT_FALSE(IsFileReadOnly(At("a")));
  EXPECT_TRUE(IsFileReadOnly(At("protejat")));
  EXPECT_TRUE(IsFileReadOnly(At("nu-exista")));
  EXPECT_EQ(FileAgeByName(At("nu-exista")).Days(), -1.0);
  EXPECT_EQ(FileAgeByName(TextOf(folder_.Path())).Days(), -1.0);
  EXPECT_TRUE(ForceDelete(At("protejat")));
  EXPECT_FALSE(ForceDelete(At("protejat")));
  EXPECT_FALSE(ForceDelete(TextOf(folder_.Path())));
}

TEST_F(FileTrees, LargeFilesHaveTheLargestSize) {
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);  // whoever runs the tests may have set a limit for files
#endif
  Make("a", "");
  for (const auto& [size, expected] : {std::pair{0x7FFFFFFFULL, 0x7FFFFFFF}, std::pair{0x180000000ULL, 0x7FFFFFFF}}) {
    std::error_code refused;
    std::filesystem::resize_file(folder_ / "a", size, refused);
    if (refused) {
      GTEST_SKIP() << "no file of that size can be made: " << refused.message();
    }
    EXPECT_EQ(DimensiuneFisier(At("a")), expected);
  }
}

TEST_F(FileTrees, FilesAreAsOldAsTheirLastWriting) {
  Make("a", "x");
  const DateTime first = FileAgeByName(At("a"));
  const auto moment = std::filesystem::last_write_time(folder_ / "a");
  std::filesystem::last_write_time(folder_ / "a", moment - std::chrono::minutes(90));
  EXPECT_NEAR(first.Days() - FileAgeByName(At("a")).Days(), 90.0 / 1440, 0.0001) << "but for a change of the clock";
}

TEST_F(FileTrees, FilesAreComparedByteByByte) {
  struct Case {
    std::string left;
    std::string right;
    bool equal;
  };
  const std::string block(131'072, 'x');
  const std::vector<Case> cases = {
      {"", "", true},
      {"a", "a", true},
      {"a", "b", false},
      {"a", "", false},
      {"ab", "a", false},
      {block, block, true},
      {block + "1", block + "1", true},
      {block + "1", block + "2", false},
      {"1" + block + block, "2" + block + block, false},
      {std::string("a\0b", 3), std::string("a\0c", 3), false},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    Make("stanga", cases[i].left);
    Make("dreapta", cases[i].right);
    EXPECT_EQ(ComparaFisiere(At("stanga"), At("dreapta")), cases[i].equal) << i;
    EXPECT_EQ(ComparaFisiere(At("dreapta"), At("stanga")), cases[i].equal) << i;
  }
  for (const path& other : {path("nu-exista"), path()}) {
    EXPECT_THROW(static_cast<void>(ComparaFisiere(At("stanga"), At(other))), OsError);
    EXPECT_THROW(static_cast<void>(ComparaFisiere(At(other), At("stanga"))), OsError);
  }
}

TEST_F(FileTrees, SingleFilesAreCopied) {
  for (const std::size_t size : {0U, 1U, 2047U, 2048U, 2049U, 5000U, 262'144U, 262'145U, 600'000U}) {
    std::string content(size, 'a');
    for (std::size_t i = 0; i < size; ++i) {
      content[i] = static_cast<char>('a' + i % 23);
    }
    Make("sursa", content);
    CopyNoBuffering(At("sursa"), At("copie"));
    EXPECT_EQ(ReadWhole(folder_ / "copie"), content) << size;
    std::filesystem::remove(folder_ / "noua");
    CopyNoBuffering(At("sursa"), At("noua"));
    EXPECT_EQ(ReadWhole(folder_ / "noua"), content) << size;
  }
  EXPECT_EQ(TreeOf(folder_.Path()).size(), 3U);
}

TEST_F(FileTrees, SingleFilesThatCannotBeCopiedAreToldOf) {
  Make("a", "intreg");
  std::filesystem::create_directory(folder_ / "folder");
  for (const path& source : {path("nu-exista"), path("folder")}) {
    ExpectError<Error>([&] { CopyNoBuffering(At(source), At("copie")); }, "Nu pot deschide " + At(source));
  }
  ExpectError<Error>([&] { CopyNoBuffering(At("a"), At("a")); }, "Nu pot deschide " + At("a"));
  std::filesystem::create_hard_link(folder_ / "a", folder_ / "alt-nume");
  ExpectError<Error>([&] { CopyNoBuffering(At("a"), At("alt-nume")); }, "Nu pot deschide " + At("a"));
  try {
    CopyNoBuffering(At("a"), At("lipsa/copie"));
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("CopyNoBuffering: " + At("lipsa/copie") + ": "));
  }
  EXPECT_THROW(CopyNoBuffering(At("a"), At("folder")), OsError);
  EXPECT_EQ(TreeOf(folder_.Path()), (Tree{{"a", "intreg"}, {"alt-nume", "intreg"}, {"folder", "/"}}));
}

}  // namespace
}  // namespace kiv
