#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <optional>

#include "Expect.h"
#include "kivtools/WinUtil/Paths.h"
#include "platform/TestFolder.h"
#include "platform/posix/UserDirs.h"

namespace kiv {
namespace {

TEST(UserDirs, TheLastLineThatNamesAFolderCounts) {
  const struct {
    std::string_view text;
    std::string_view folder;
  } cases[] = {
      {"XDG_DESKTOP_DIR=\"$HOME/Birou\"", "/home/ana/Birou"},
      {"# comment\nXDG_DESKTOP_DIR=\"$HOME/a\"\n  XDG_DESKTOP_DIR\t= \"/b c/\" # rest\n", "/b c"},
      {"XDG_DESKTOP_DIR=\"$HOME\"\n", "/home/ana"},
      {"XDG_DESKTOP_DIR=\"$HOME/\"\n", "/home/ana"},
      {"XDG_DESKTOP_DIR=\"/\"\n", "/"},
      {"XDG_DESKTOP_DIR=\"/a\\\"b\\\\c\\$d\"\n", "/a\"b\\c$d"},
      {"XDG_DESKTOP_DIR=\"$HOME/a\"\nXDG_DESKTOP_DIR=\"relative\"\n", "/home/ana/a"},
      {"XDG_DESKTOP_DIR=\"$HOMEx\"\n", ""},
      {"XDG_DESKTOP_DIR=\"/open\nXDG_DESKTOP_DIRS=\"/a\"\n", ""},
      {"XDG_DESKTOP_DIR=/unquoted\n#XDG_DESKTOP_DIR=\"/a\"\n", ""},
      {"XDG_DESKTOP_DIR=\"/a\\", ""},
      {"", ""},
  };
  for (const auto& [text, folder] : cases) {
    EXPECT_EQ(platform::FolderFromUserDirs(text, "XDG_DESKTOP_DIR", "/home/ana"), folder) << text;
  }
}

/// An environment in which only what the test sets is set; put back afterwards.
class SpecialFolders : public testing::Test {
 protected:
  SpecialFolders() {
    for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DESKTOP_DIR", "XDG_DOCUMENTS_DIR"}) {
      const char* const value = std::getenv(name);
      before_[name] = value == nullptr ? std::nullopt : std::optional<std::string>(value);
      unsetenv(name);
    }
    setenv("HOME", folder_.Path().c_str(), 1);
  }
  ~SpecialFolders() override {
    for (const auto& [name, value] : before_) {
      value ? setenv(name, value->c_str(), 1) : unsetenv(name);
    }
  }

  TestFolder folder_;
  std::string home_ = folder_.Path().native();

 private:
  std::map<const char*, std::optional<std::string>> before_;
};

TEST_F(SpecialFolders, WithoutAnyWordAreInTheHomeFolder) {
  EXPECT_EQ(GetMyDocumentsFolder(), home_);
  EXPECT_EQ(GetDesktopPath(), home_ + "/Desktop");
  EXPECT_EQ(GetAppDataFolder(), home_ + "/.config");
}

TEST_F(SpecialFolders, TheFileCountsBeforeTheEnvironment) {
  setenv("XDG_DOCUMENTS_DIR", "/env/documents//", 1);
  setenv("XDG_DESKTOP_DIR", "/env/desktop", 1);
  std::filesystem::create_directory(folder_ / "config");
  setenv("XDG_CONFIG_HOME", (home_ + "/config/").c_str(), 1);
  WriteWhole(folder_ / "config" / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Birou\"\n");
  EXPECT_EQ(GetMyDocumentsFolder(), "/env/documents");
  EXPECT_EQ(GetDesktopPath(), home_ + "/Birou");
  EXPECT_EQ(GetAppDataFolder(), home_ + "/config");
}

TEST_F(SpecialFolders, PathsThatAreNotAbsoluteDoNotCount) {
  setenv("XDG_CONFIG_HOME", "relative", 1);
  setenv("XDG_DOCUMENTS_DIR", "relative", 1);
  EXPECT_EQ(GetAppDataFolder(), home_ + "/.config");
  EXPECT_EQ(GetMyDocumentsFolder(), home_);
}

TEST_F(SpecialFolders, WithoutHomeThePasswordDatabaseTells) {
  setenv("HOME", "", 1);
  EXPECT_TRUE(GetAppDataFolder().starts_with('/'));
  EXPECT_TRUE(GetAppDataFolder().ends_with("/.config"));
}

TEST_F(SpecialFolders, AFileThatCannotBeReadIsAnError) {
  std::filesystem::create_directories(folder_ / ".config" / "user-dirs.dirs");
  try {
    static_cast<void>(GetDesktopPath());
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("GetDesktopPath: " + home_ + "/.config/user-dirs.dirs: "));
  }
  EXPECT_EQ(GetAppDataFolder(), home_ + "/.config");
}

}  // namespace
}  // namespace kiv
