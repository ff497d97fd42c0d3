// Trees with every kind of entry that the system knows: nothing hangs, nothing outside of the tree changes.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <thread>

#include "Expect.h"
#include "WinUtil/ToldFailures.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileLists.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "platform/FolderWalk.h"
#include "platform/SystemCalls.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;
using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// A tmpfs of its own, as far as this process may mount one.
class SmallFileSystem {
 public:
  SmallFileSystem(path at, const char* options, unsigned long flags = 0) : at_(std::move(at)) {
    std::filesystem::create_directories(at_);
    mounted_ = mount("kivtools", at_.c_str(), "tmpfs", flags, options) == 0;
  }
  ~SmallFileSystem() {
    if (mounted_) {
      umount2(at_.c_str(), MNT_DETACH);
    }
  }
  SmallFileSystem(const SmallFileSystem&) = delete;
  SmallFileSystem& operator=(const SmallFileSystem&) = delete;

  [[nodiscard]] bool Mounted() const { return mounted_; }
  [[nodiscard]] bool MakeReadOnly() const {
    return mount(nullptr, at_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
  }

 private:
  path at_;
  bool mounted_;
};

class HostileTrees : public testing::Test {
 protected:
  HostileTrees() { std::filesystem::create_directory(folder_ / "sursa"); }
  ~HostileTrees() override { RecursiveDelete(folder_.Path().native()); }  // deeper than others reach

  [[nodiscard]] Text At(const path& name) const { return (folder_ / name).native(); }
  void Copy(const path& source = "sursa", const path& destination = "copie") {
    RecursiveCopyWithExt(At(source), At(destination), {"*"}, label_, 350);
  }
  [[nodiscard]] std::size_t OpenFiles() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
  }

  TestFolder folder_;
  SmallFileSystem memory_{folder_.Path(), ""};  // where it may not be mounted the tests take longer, no more
  host::headless::Label label_{nullptr, "lblFisier"};
};

#define SKIP_UNLESS_MOUNTED(fileSystem)                              \
  if (!(fileSystem).Mounted()) {                                     \
    GTEST_SKIP() << "needs the right to mount: " << strerror(errno); \
  }

TEST_F(HostileTrees, OfEveryKindOfEntryAreListedCopiedAndDeleted) {
  WriteWhole(folder_ / "afara", "neatins");
  std::filesystem::create_directory(folder_ / "alta");
  WriteWhole(folder_ / "alta" / "dinafara", "neatins");
  WriteWhole(folder_ / "sursa" / "fisier", "x");
  ASSERT_EQ(mkfifo(At("sursa/teava").c_str(), 0666), 0);
  std::filesystem::create_symlink("nicaieri", folder_ / "sursa" / "spre-nimic");
  std::filesystem::create_symlink("spre-sine", folder_ / "sursa" / "spre-sine");
  std::filesystem::create_symlink("fisier", folder_ / "sursa" / "spre-fisier");
  std::filesystem::create_directory_symlink("../alta", folder_ / "sursa" / "spre-alta");
  std::filesystem::create_directory_symlink(".", folder_ / "sursa" / "spre-aici");
  const int socketEnd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un name{AF_UNIX, {}};
  At("sursa/soclu").copy(name.sun_path, sizeof name.sun_path - 1);
  ASSERT_EQ(bind(socketEnd, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
  close(socketEnd);
  const bool hasDevice = mknod(At("sursa/nul").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0;  // asks for root

  EXPECT_THAT(InitFileList(At("sursa"), {"*"}), SizeIs(hasDevice ? 9 : 8));
  Copy();
  std::map<std::string, std::string> copied;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "copie")) {
    copied[entry.path().filename()] =
        entry.is_symlink() ? "-> " + std::filesystem::read_symlink(entry.path()).native() : ReadWhole(entry.path());
  }
  EXPECT_EQ(copied, (std::map<std::string, std::string>{{"fisier", "x"},
                                                        {"spre-nimic", "-> nicaieri"},
                                                        {"spre-sine", "-> spre-sine"},
                                                        {"spre-fisier", "-> fisier"},
                                                        {"spre-alta", "-> ../alta"},
                                                        {"spre-aici", "-> ."}}));
  Copy();  // once more, over itself
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "fisier"), "x");
  for (const char* const other : {"sursa/teava", "sursa/soclu", "sursa/spre-nimic", "sursa/spre-sine"}) {
    EXPECT_THROW(static_cast<void>(ComparaFisiere(At(other), At("afara"))), OsError) << other;
    ExpectError<Error>([&] { CopyNoBuffering(At(other), At("copie/noua")); }, "Nu pot deschide " + At(other));
    EXPECT_THROW(CopyNoBuffering(At("afara"), At(other == std::string("sursa/spre-nimic") ? "none/a" : other)),
                 OsError);
  }
  RecursiveDelete(At("sursa"));
  RecursiveDelete(At("copie"));
  EXPECT_THAT(InitFileList(folder_.Path().native(), {"*"}), UnorderedElementsAre(At("afara"), At("alta/dinafara")));
  EXPECT_EQ(ReadWhole(folder_ / "afara"), "neatins");
}

TEST_F(HostileTrees, ThatAreLinksAreDeletedAsLinks) {
  WriteWhole(folder_ / "sursa" / "a", "A");
  std::filesystem::create_directory_symlink("sursa", folder_ / "legatura");
  std::filesystem::create_symlink("sursa/a", folder_ / "spre-fisier");
  EXPECT_EQ(InitFileList(At("legatura"), {"*"}), StringList{At("legatura/a")});
  RecursiveDelete(At("legatura/"));
  RecursiveDelete(At("spre-fisier"));
  EXPECT_THAT(InitFileList(folder_.Path().native(), {"*"}), UnorderedElementsAre(At("sursa/a"), At("spre-fisier")));
}

TEST_F(HostileTrees, AreNotWrittenThroughLinksInTheDestination) {
  std::filesystem::create_directories(folder_ / "sursa" / "s");
  std::filesystem::create_directory(folder_ / "copie");
  std::filesystem::create_directory(folder_ / "alta");
  WriteWhole(folder_ / "sursa" / "a", "nou");
  WriteWhole(folder_ / "sursa" / "s" / "b", "nou");
  WriteWhole(folder_ / "afara", "neatins");
  std::filesystem::create_symlink("../afara", folder_ / "copie" / "a");
  std::filesystem::create_directory_symlink("../alta", folder_ / "copie" / "s");
  Copy();
  EXPECT_EQ(ReadWhole(folder_ / "afara"), "neatins");
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "a"), "nou");
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "alta"));
}

TEST_F(HostileTrees, WithOtherNamesOfTheirFilesInTheDestinationStayWhole) {
  WriteWhole(folder_ / "sursa" / "a", "A");
  WriteWhole(folder_ / "sursa" / "b", "B");
  std::filesystem::create_directory(folder_ / "copie");
  std::filesystem::create_hard_link(folder_ / "sursa" / "a", folder_ / "copie" / "a");
  std::filesystem::create_symlink("../sursa/b", folder_ / "copie" / "b");
  WriteWhole(folder_ / "copie" / "c", "C");
  std::filesystem::create_symlink("../copie/c", folder_ / "sursa" / "c");  // a link that would replace what it leads to
  Copy();
  for (const char* const name : {"a", "b", "c"}) {
    EXPECT_EQ(ReadWhole(folder_ / "sursa" / name), ReadWhole(folder_ / "copie" / name));
    EXPECT_EQ(ReadWhole(folder_ / "sursa" / name).size(), 1U);
  }
  EXPECT_EQ(std::filesystem::hard_link_count(folder_ / "sursa" / "a"), 2U);
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(folder_ / "copie" / "c")));
}

TEST_F(HostileTrees, HaveNamesOfAnyBytes) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') {
      all.push_back(static_cast<char>(byte));
    }
  }
  const std::vector<std::string> names = {
      all, std::string(251, 'x') + ".txt", "\xFF\xFE", "a\nb", " ", "...", "punct.", "-rf", "*", "~"};
  for (const std::string& name : names) {
    WriteWhole(folder_ / "sursa" / name, name);
  }
  EXPECT_THAT(InitFileList(At("sursa"), {"TXT"}), SizeIs(1));
  EXPECT_THAT(InitFileList(At("sursa"), {""}),
              UnorderedElementsAre(At("sursa/\xFF\xFE"), At("sursa/a\nb"), At("sursa/ "), At("sursa/..."),
                                   At("sursa/punct."), At("sursa/-rf"), At("sursa/*"), At("sursa/~")));
  for (int round = 0; round < 2; ++round) {  // also over the former ones, beside names of the greatest length
    Copy();
    for (const std::string& name : names) {
      EXPECT_EQ(ReadWhole(folder_ / "copie" / name), name);
    }
  }
  RecursiveDelete(At("copie"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copie"));
}

TEST_F(HostileTrees, AreAsDeepAsTheyLike) {
  constexpr int kDepth = 10'000;
  const std::string name(20, 'd');
  {
    platform::OpenFolders folders;
    ASSERT_FALSE(folders.Enter(At("sursa").c_str()).Failed());
    for (int level = 0; level < kDepth; ++level) {
      ASSERT_FALSE(MakeFolder(folders.Innermost(), name).Failed());
      if (level % 100 == 0) {
        platform::File file;
        ASSERT_FALSE(file.Open(folders.Innermost(), "f.txt", platform::OpenMode::CreateNew).Failed());
      }
      ASSERT_FALSE(folders.Enter(name).Failed()) << level;
    }
  }
  const std::size_t before = OpenFiles();
  const StringList files = InitFileList(At("sursa"), {"txt"});
  EXPECT_THAT(files, SizeIs(kDepth / 100));
  EXPECT_THAT(files, Contains(SizeIs(At("sursa/f.txt").size() + (kDepth - 100) * (name.size() + 1))));
  Copy();
  EXPECT_THAT(InitFileList(At("copie"), {"txt"}), SizeIs(kDepth / 100));
  RecursiveDelete(At("copie"));
  RecursiveDelete(At("sursa"));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
  EXPECT_EQ(OpenFiles(), before);
}

TEST_F(HostileTrees, LoseNothingOfTheFoldersThatWereClosedOnTheWayDown) {
  path deep = folder_ / "sursa";
  for (int level = 0; level < 80; ++level) {
    for (int file = 0; file < 40; ++file) {
      WriteWhole(deep / ("f" + std::to_string(file) + ".txt"), "x");
    }
    deep /= "d";
    std::filesystem::create_directory(deep);
  }
  EXPECT_THAT(InitFileList(At("sursa"), {"txt"}), SizeIs(3200));
  Copy();
  EXPECT_THAT(InitFileList(At("copie"), {"txt"}), SizeIs(3200));
  RecursiveDelete(At("sursa"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sursa"));
}

/// While this object lives, the process may open so many files more.
class FewHandles {
 public:
  explicit FewHandles(std::size_t left) {
    getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit low{200, before_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &low);
    for (int taken = open("/dev/null", O_RDONLY); taken != -1; taken = open("/dev/null", O_RDONLY)) {
      taken_.push_back(taken);
    }
    for (; left > 0 && !taken_.empty(); --left) {
      close(taken_.back());
      taken_.pop_back();
    }
  }
  ~FewHandles() {
    for (const int taken : taken_) {
      close(taken);
    }
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  FewHandles(const FewHandles&) = delete;
  FewHandles& operator=(const FewHandles&) = delete;

 private:
  rlimit before_{};
  std::vector<int> taken_;
};

TEST_F(HostileTrees, AreWholeAlsoWhereFewFilesMayBeOpen) {
  path deep = folder_ / "sursa";
  for (int level = 0; level < 40; ++level) {
    std::filesystem::create_directories(deep / "gol");
    WriteWhole(deep / "f.txt", "x");
    deep /= "d";
    std::filesystem::create_directory(deep);
  }
  for (const std::size_t left : {2U, 3U, 5U, 20U, 39U}) {
    const FewHandles few(left);
    EXPECT_THAT(InitFileList(At("sursa"), {"*"}), SizeIs(40)) << left;
  }
  for (const std::size_t left : {6U, 7U, 20U, 50U}) {
    RecursiveDelete(At("copie"));
    {
      const FewHandles few(left);
      Copy();
    }
    EXPECT_THAT(InitFileList(At("copie"), {"*"}), SizeIs(40)) << left;
  }
  {
    const FewHandles few(2);
    RecursiveDelete(At("copie"));
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copie"));
}

TEST_F(HostileTrees, ThatCannotBeOpenedForWantOfHandlesAreToldOf) {
  ToldFailures failures;
  std::filesystem::create_directory(folder_ / "sursa" / "s");
  const auto copies = [&](std::size_t left) {
    const FewHandles few(left);
    Copy();
  };
  // The address sanitizer looks at a class with handles of its own, once: before there are none.
  EXPECT_THAT(InitFileList(At("lipsa"), {"*"}), IsEmpty());
  failures.told.clear();
  for (const std::size_t left : {0U, 1U}) {
    const FewHandles few(left);
    EXPECT_THAT(InitFileList(At("sursa"), {"*"}), IsEmpty());
  }
  EXPECT_THAT(failures.told, testing::ElementsAre(At("sursa 24"), At("sursa/s 24")));
  failures.told.clear();
  copies(1);
  EXPECT_THAT(failures.told, testing::ElementsAre(At("sursa 24")));
}

TEST_F(HostileTrees, MayHaveManyEntriesInAFolder) {
  constexpr std::size_t kEntries = 100'000;
  {
    platform::Folder folder;
    ASSERT_FALSE(folder.Open(platform::Folder::Working(), At("sursa").c_str()).Failed());
    for (std::size_t i = 0; i < kEntries; ++i) {
      platform::File file;
      ASSERT_FALSE(file.Open(folder, std::to_string(i), platform::OpenMode::CreateNew).Failed());
    }
  }
  EXPECT_THAT(InitFileList(At("sursa"), {""}), SizeIs(kEntries));
  RecursiveDelete(At("sursa"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sursa"));
}

TEST_F(HostileTrees, MayChangeWhileTheyAreWalked) {
  std::atomic<bool> stop = false;
  std::thread busy([&] {
    for (int i = 0; !stop; ++i) {
      const path name = folder_ / "sursa" / std::to_string(i % 50);
      std::error_code ignored;
      if (i % 3 == 0) {
        std::filesystem::remove_all(name, ignored);
        std::filesystem::create_directory(name, ignored);
      } else {
        std::filesystem::remove_all(name, ignored);
        WriteWhole(name, "x");
      }
    }
  });
  WriteWhole(folder_ / "sursa" / "statornic", "aici");
  std::size_t listed = 0;
  std::size_t copied = 0;
  for (int round = 0; round < 50; ++round) {
    const StringList files = InitFileList(At("sursa"), {"*"});
    EXPECT_THAT(files, Contains(At("sursa/statornic")));
    listed += files.size();
    Copy();
    copied += InitFileList(At("copie"), {"*"}).size();
    EXPECT_EQ(ReadWhole(folder_ / "copie" / "statornic"), "aici");
    RecursiveDelete(At("copie"));
  }
  stop = true;
  busy.join();
  std::cout << listed << " files listed, " << copied << " copied in 50 rounds\n";
}

/// Cuts a file off just before it is read for the second time.
class Cutting : public platform::SystemCallGate {
 public:
  Cutting(Text file, off_t size) : file_(std::move(file)), size_(size) {}

  platform::SystemStatus Before(platform::SystemCall call) noexcept override {
    if (call == platform::SystemCall::Read && ++reads_ == 2) {
      EXPECT_EQ(truncate(file_.c_str(), size_), 0);
    }
    return {};
  }

 private:
  Text file_;
  off_t size_;
  int reads_ = 0;
  Replacement<platform::SystemCallGate> inUse_{platform::system_call_service, *this};
};

TEST_F(HostileTrees, WithAFileThatIsCutOffWhileItIsReadAreToldOf) {
  constexpr std::size_t kFirst = 262'144;  // what the first reading brings
  const struct {
    std::size_t size;
    off_t left;
    Text message;
  } cases[] = {
      {300'000, kFirst, "Am incercat sa citesc 2048 bytes; Am reusit sa citesc numai 0 bytes"},
      {300'000, kFirst + 2'048 + 100, "Am incercat sa citesc 2048 bytes; Am reusit sa citesc numai 100 bytes"},
      {kFirst + 904, kFirst + 900, "Am incercat sa citesc 904 bytes; Am reusit sa citesc numai 900 bytes"},
      {300'000, 0, "Am incercat sa citesc 2048 bytes; Am reusit sa citesc numai 0 bytes"},
  };
  for (const auto& [size, left, message] : cases) {
    WriteWhole(folder_ / "sursa" / "a", std::string(size, 'x'));
    WriteWhole(folder_ / "copie", "vechi");
    const Cutting cutting(At("sursa/a"), left);
    ExpectError<Error>([&] { CopyNoBuffering(At("sursa/a"), At("copie")); }, message);
    EXPECT_EQ(ReadWhole(folder_ / "copie"), "vechi") << "a former file stays";
  }
  // A file of the system that says it has a page and gives a few bytes.
  const path promises = "/sys/kernel/mm/transparent_hugepage/enabled";
  if (const std::size_t bytes = ReadWhole(promises).size(); bytes > 0 && bytes < 2'048) {
    ExpectError<Error>(
        [&] { CopyNoBuffering(promises.native(), At("noua")); },
        "Am incercat sa citesc 2048 bytes; Am reusit sa citesc numai " + std::to_string(bytes) + " bytes");
  }
}

TEST_F(HostileTrees, OnAFullFileSystemKeepTheFormerFiles) {
  const SmallFileSystem small(folder_ / "mic", "size=256k");
  SKIP_UNLESS_MOUNTED(small);
  WriteWhole(folder_ / "mic" / "a", "vechi");
  WriteWhole(folder_ / "sursa" / "a", std::string(1'000'000, 'x'));
  WriteWhole(folder_ / "sursa" / "b", std::string(300'000, 'x'));
  WriteWhole(folder_ / "sursa" / "c", "incape");
  Copy("sursa", "mic");
  EXPECT_EQ(ReadWhole(folder_ / "mic" / "a"), "vechi");
  EXPECT_EQ(ReadWhole(folder_ / "mic" / "c"), "incape");
  EXPECT_THAT(InitFileList(At("mic"), {"*"}), UnorderedElementsAre(At("mic/a"), At("mic/c"))) << "no half of a file";
  ExpectError<OsError>([&] { CopyNoBuffering(At("sursa/a"), At("mic/a")); },
                       "CopyNoBuffering: " + At("mic/a") + ": " + strerror(ENOSPC));
  EXPECT_EQ(ReadWhole(folder_ / "mic" / "a"), "vechi");
  std::cout << "of 3 files 1 fitted and 1 former one stayed\n";
}

TEST_F(HostileTrees, OnAReadOnlyFileSystemStay) {
  const SmallFileSystem small(folder_ / "mic", "size=256k");
  SKIP_UNLESS_MOUNTED(small);
  WriteWhole(folder_ / "mic" / "a", "vechi");
  WriteWhole(folder_ / "sursa" / "a", "nou");
  ASSERT_TRUE(small.MakeReadOnly());
  Copy("sursa", "mic");
  RecursiveDelete(At("mic"));
  EXPECT_FALSE(ForceDelete(At("mic/a")));
  try {
    CopyNoBuffering(At("sursa/a"), At("mic/b"));
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), EROFS);
    EXPECT_EQ(error.what(), "CopyNoBuffering: " + At("mic/b") + ": " + strerror(EROFS));
  }
  EXPECT_EQ(ReadWhole(folder_ / "mic" / "a"), "vechi");
}

TEST_F(HostileTrees, MayCrossMountPoints) {
  const SmallFileSystem small(folder_ / "sursa" / "mic", "size=256k");
  SKIP_UNLESS_MOUNTED(small);
  WriteWhole(folder_ / "sursa" / "mic" / "a", "A");
  EXPECT_EQ(InitFileList(At("sursa"), {"*"}), StringList{At("sursa/mic/a")});
  Copy();
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "mic" / "a"), "A");
}

/// What a process of a plain user finds; the tests themselves may run as root, whom nothing is forbidden.
template <class Work>
void AsPlainUser(Work&& work) {
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    constexpr uid_t kNobody = 65'534;
    const bool isPlain = geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
    _exit(isPlain && work() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(HostileTrees, WithoutPermissionContributeNothing) {
  for (const char* const name : {"sursa/inchis", "sursa/deschis", "copie"}) {
    std::filesystem::create_directories(folder_ / name);
    std::filesystem::permissions(folder_ / name, std::filesystem::perms::all);
  }
  std::filesystem::permissions(folder_ / "sursa", std::filesystem::perms::all);
  WriteWhole(folder_ / "sursa" / "inchis" / "a", "A");
  WriteWhole(folder_ / "sursa" / "deschis" / "b", "B");
  WriteWhole(folder_ / "sursa" / "deschis" / "ilizibil", "C");
  ASSERT_EQ(chmod(At("sursa/deschis/ilizibil").c_str(), 0), 0);
  ASSERT_EQ(chmod(At("sursa/inchis").c_str(), 0), 0);
  AsPlainUser([&] {
    const bool listed = InitFileList(At("sursa"), {"*"}).size() == (geteuid() == 0 ? 3U : 2U);
    Copy();
    bool refused = false;
    try {
      CopyNoBuffering(At("sursa/deschis/ilizibil"), At("copie/x"));
    } catch (const Error& error) {
      refused = error.what() == "Nu pot deschide " + At("sursa/deschis/ilizibil");
    }
    return listed && refused && ReadWhole(folder_ / "copie" / "deschis" / "b") == "B";
  });
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copie" / "deschis" / "ilizibil"));
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "copie" / "inchis"));
}

TEST_F(HostileTrees, AreOverwrittenInPlaceInAFolderThatTakesNoFile) {
  std::filesystem::create_directory(folder_ / "copie");
  for (const char* const name : {"a", "singur"}) {
    WriteWhole(folder_ / "copie" / name, "mai lung");
    ASSERT_EQ(chmod(At(path("copie") / name).c_str(), 0666), 0);
    WriteWhole(folder_ / "sursa" / name, "nou");
  }
  ASSERT_EQ(chmod(At("copie").c_str(), 0555), 0);
  AsPlainUser([&] {
    Copy();
    CopyNoBuffering(At("sursa/a"), At("copie/singur"));
    return ReadWhole(folder_ / "copie" / "a") == "nou" && ReadWhole(folder_ / "copie" / "singur") == "nou";
  });
}

TEST_F(HostileTrees, KeepPermissionsAndHoles) {
  const std::map<std::string, mode_t> permissions = {{"a", 0626}, {"b", 0600}, {"c", 0640}, {"d", 0640}, {"e", 0604}};
  for (const auto& [name, mode] : permissions) {
    WriteWhole(folder_ / "sursa" / name, name);
    ASSERT_EQ(chmod(At(path("sursa") / name).c_str(), mode), 0);
  }
  std::filesystem::create_directory(folder_ / "sursa" / "privat");
  ASSERT_EQ(chmod(At("sursa/privat").c_str(), 0500), 0);
  WriteWhole(folder_ / "sursa" / "rar", "inceput");
  // As large as this process may make a file: a number of bytes that a 32-bit one cannot hold, where it may.
  rlimit most{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &most), 0);
  const std::uint64_t size = std::min<std::uint64_t>(std::uint64_t{1} << 33U, most.rlim_cur);
  std::filesystem::resize_file(folder_ / "sursa" / "rar", size);
  const mode_t former = umask(077);
  Copy();
  umask(former);
  struct stat status {};
  for (const auto& [name, mode] : permissions) {
    ASSERT_EQ(stat(At(path("copie") / name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, mode) << name << ", whatever new files are denied";
  }
  ASSERT_EQ(stat(At("copie/privat").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
  ASSERT_EQ(stat(At("copie/rar").c_str(), &status), 0);
  EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), size);
  EXPECT_LT(status.st_blocks, 1000);
  EXPECT_EQ(DimensiuneFisier(At("copie/rar")), std::min<std::uint64_t>(size, INT32_MAX));
}

TEST_F(HostileTrees, LockedByOthersAreNotCopiedOneByOne) {
  WriteWhole(folder_ / "sursa" / "a", "A");
  const int locked = open(At("sursa/a").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(locked, LOCK_SH), 0);
  ExpectError<Error>([&] { CopyNoBuffering(At("sursa/a"), At("b")); }, "Nu pot deschide " + At("sursa/a"));
  close(locked);
  CopyNoBuffering(At("sursa/a"), At("b"));
}

TEST_F(HostileTrees, RootsAreNotDeleted) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "needs root: the root here is one that nobody would miss";
  }
  WriteWhole(folder_ / "sursa" / "a", "A");
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    if (chroot(folder_.Path().c_str()) != 0 || chdir("/") != 0) {
      _exit(1);
    }
    for (const char* const root : {"", "/", "//", "/.", "/..", "///../.", ".", "sursa/.."}) {
      RecursiveDelete(root);
    }
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadWhole(folder_ / "sursa" / "a"), "A");
}

}  // namespace
}  // namespace kiv
