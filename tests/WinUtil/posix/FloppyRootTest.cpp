// On POSIX a folder stands for drive A:.
#include "WinUtil/FloppyHost.h"

namespace kiv::floppy {
namespace {

using enum DialogAnswer;

class FloppyRoot : public CopyTest {
 protected:
  ~FloppyRoot() override { SetFloppyRoot(""); }
};

TEST_F(FloppyRoot, IsADisketteWhileItIsAFolder) {
  EXPECT_EQ(StareFloppy(), nuExista);
  const struct {
    const char* folder;
    stareFloppyInDrive state;
  } cases[] = {{"disc", existaOk}, {"none", nuExista}, {"local/a", nuExista}};
  for (const auto& root : cases) {
    SetFloppyRoot(At(root.folder));
    EXPECT_EQ(StareFloppy(), root.state) << root.folder;
  }
  // A path that the system refuses as such is no empty drive, nor one that can be read.
  SetFloppyRoot(At("disc") + "/" + Text(300, 'x'));
  EXPECT_EQ(StareFloppy(), existaNeformatat);
}

TEST_F(FloppyRoot, HoldsWhatIsCopiedToDriveA) {
  SetFloppyRoot(At("disc"));
  std::filesystem::create_directory(folder_ / "disc/d");
  const StringList onDiskette = {"A:\\d\\a", "a:/b"};
  ExpectCopy();
  CopiazaPeDischetaMulti(sources_, onDiskette);
  EXPECT_TRUE(ReadWhole(folder_ / "disc/d/a") == a_);
  EXPECT_EQ(ReadWhole(folder_ / "disc/b"), b_);
  // Other paths are what they are, backslashes and all.
  ExpectCopy();
  CopiazaPeDischeta(sources_[1], At("temp/B:\\x"));
  EXPECT_TRUE(std::filesystem::remove(folder_ / "temp/B:\\x"));
  // The user is told the name that the host has given.
  std::filesystem::remove(folder_ / "disc/b");
  std::filesystem::create_symlink("nowhere", folder_ / "disc/b");
  Expect({{kInsert, Ok}, {kHasData, Yes}, {kDone, Ok}});
  CopiazaPeDischeta(sources_[1], "A:\\b");
  EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "disc/b")) << "a link is replaced, not followed";
  EXPECT_EQ(ReadWhole(folder_ / "disc/b"), b_);
}

TEST_F(FloppyRoot, LeavesASourceThatIsALink) {
  SetFloppyRoot(At("disc"));
  std::filesystem::create_symlink(folder_ / "disc/a", folder_ / "local/legatura");
  WriteWhole(folder_ / "disc/a", "singura copie");
  for (const Text& destination : {Text("A:\\a"), At("local/legatura")}) {
    Expect({{kInsert, Ok}, {kHasData, Yes}});
    EXPECT_EQ(Failure([&] { CopiazaPeDischeta(At("local/legatura"), destination); }),
              "Nu pot deschide " + At("local/legatura"));
  }
  EXPECT_EQ(ReadWhole(folder_ / "disc/a"), "singura copie");
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "local/legatura"));
}

}  // namespace
}  // namespace kiv::floppy
