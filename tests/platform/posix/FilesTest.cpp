#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "platform/FailingCalls.h"
#include "platform/FileCopy.h"
#include "platform/Files.h"
#include "platform/FolderEntries.h"
#include "platform/TestFolder.h"

namespace kiv::platform {
namespace {

TEST(PosixFiles, OtherThanRegularAreRefusedWithoutWaiting) {
  const TestFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  File file;
  EXPECT_EQ(file.Open(folder / "pipe", OpenMode::ReadFile).Code(), EOPNOTSUPP);
  EXPECT_EQ(file.Open("/dev/null", OpenMode::ReadFile).Code(), EOPNOTSUPP);
  EXPECT_EQ(file.Open(folder.Path(), OpenMode::ReadFile).Code(), EISDIR);
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.Open("/dev/null", OpenMode::ReadStream).Code(), 0);
}

TEST(PosixFiles, LinksAreEntriesOfTheirOwn) {
  const TestFolder folder;
  std::filesystem::create_directory(folder / "sub");
  std::filesystem::create_directory_symlink(folder / "sub", folder / "link");
  std::filesystem::create_symlink("nowhere", folder / "dangling");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  WriteWhole(folder / "file", "");
  Folder at;
  ASSERT_EQ(at.Open(Folder::Working(), folder.Path()).Code(), 0);
  const std::map<std::string, EntryKind> expected = {{"dangling", EntryKind::Link},
                                                     {"file", EntryKind::File},
                                                     {"link", EntryKind::Link},
                                                     {"pipe", EntryKind::Other},
                                                     {"sub", EntryKind::Folder}};
  std::map<std::string, EntryKind> found;
  FolderEntries entries(at, 1024);
  FolderEntry entry;
  for (bool more = true; more;) {
    ASSERT_EQ(entries.Next(entry, more).Code(), 0);
    if (more) {
      found.emplace(entry.name.Get(), entry.kind);
      EntryInfo info;
      EXPECT_EQ(Query(at, entry.name, Links::AsThemselves, info).Code(), 0);
      EXPECT_EQ(info.kind, entry.kind) << entry.name.Get();
    }
  }
  EXPECT_EQ(found, expected);

  EntryInfo info;
  EXPECT_EQ(Query(at, "link", Links::Followed, info).Code(), 0);
  EXPECT_EQ(info.kind, EntryKind::Folder);
  EXPECT_TRUE(Query(at, "dangling", Links::Followed, info).IsMissing());
  Folder sub;
  EXPECT_TRUE(sub.Open(at, "link", Links::AsThemselves).Failed());
  EXPECT_EQ(sub.Open(at, "link").Code(), 0);
  File file;
  EXPECT_TRUE(file.Open(at, "dangling", OpenMode::CreateNew).IsExisting());
  EXPECT_EQ(RemoveFile(at, "link").Code(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder / "sub"));
}

TEST(PosixFiles, AreReachedOnLevelsThatNoPathNames) {
  constexpr int kLevels = 300;
  const std::string name(100, 'd');  // 30,000 bytes in all
  const TestFolder folder;
  Folder at;
  ASSERT_EQ(at.Open(Folder::Working(), folder.Path()).Code(), 0);
  for (int level = 0; level < kLevels; ++level) {
    ASSERT_EQ(MakeFolder(at, name).Code(), 0) << level;
    ASSERT_EQ(at.Open(at, name).Code(), 0) << level;
  }
  File file;
  EXPECT_EQ(file.Open(at, "deep", OpenMode::CreateNew).Code(), 0);
  EXPECT_EQ(RemoveFile(at, "deep").Code(), 0);
  for (int level = 0; level < kLevels; ++level) {
    ASSERT_EQ(at.Open(at, "..").Code(), 0) << level;
    ASSERT_EQ(RemoveFolder(at, name).Code(), 0) << level;
  }
}

TEST(PosixFiles, TakePermissionsAndOwner) {
  const TestFolder folder;
  File file;
  ASSERT_EQ(file.Open(Folder::Working(), folder / "a", OpenMode::CreateNew, 0600).Code(), 0);
  EntryInfo info;
  ASSERT_EQ(file.Query(info).Code(), 0);
  EXPECT_EQ(info.attributes, 0600U);
  EXPECT_EQ(info.owner, geteuid());
  info.attributes = 04711;
  EXPECT_EQ(file.SetAttributes(info).Code(), 0);
  ASSERT_EQ(file.Query(info).Code(), 0);
  EXPECT_EQ(info.attributes, 04711U);
}

/// A write that the system ends early goes on where it ended, and the failure that follows is told.
TEST(PosixFiles, WriteUpToTheLimitAndSayWhyNoFurther) {
  const TestFolder folder;
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit limit = {10, before.rlim_max};
  const auto former = std::signal(SIGXFSZ, SIG_IGN);
  File file;
  const SystemStatus opened = file.Open(folder / "a", OpenMode::CreateNew);
  setrlimit(RLIMIT_FSIZE, &limit);
  const std::array<std::uint8_t, 25> bytes{};
  const SystemStatus written = file.Write(bytes);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, former);
  EXPECT_EQ(opened.Code(), 0);
  EXPECT_EQ(written.Code(), EFBIG);
  EXPECT_EQ(std::filesystem::file_size(folder / "a"), 10U);
  EXPECT_EQ(file.Resize(UINT64_MAX).Code(), EFBIG);
}

TEST(PosixFiles, TellOfAFullDisk) {
  File file;
  ASSERT_EQ(file.Open("/dev/full", OpenMode::Append).Code(), 0);
  EXPECT_EQ(file.Write(std::array<std::uint8_t, 1>{}).Code(), ENOSPC);
}

TEST(PosixFolders, CountAsFlushedWhereTheFileSystemHasNoSuchThing) {
  const TestFolder folder;
  Folder open;
  ASSERT_EQ(open.Open(Folder::Working(), folder.Path()).Code(), 0);
  for (const auto& [code, told] : {std::pair{EINVAL, 0}, {EIO, EIO}}) {
    const FailingCalls failing(0, code);
    EXPECT_EQ(open.Flush().Code(), told);
  }
}

/// Lets the system's own copy of a range fail.
class NoOwnCopy : public SystemCallGate {
 public:
  explicit NoOwnCopy(std::int32_t code) : code_(code) {}
  SystemStatus Before(SystemCall call) noexcept override { return SystemStatus(call == SystemCall::Copy ? code_ : 0); }

 private:
  std::int32_t code_;
  Replacement<SystemCallGate> inUse_{system_call_service, *this};
};

TEST(PosixFileCopy, ReadsAndWritesOnlyWhereTheSystemHasNoCopyOfItsOwn) {
  const TestFolder folder;
  const std::string content(3 << 20, 'a');
  WriteWhole(folder / "a", content);
  Folder at;
  ASSERT_EQ(at.Open(Folder::Working(), folder.Path()).Code(), 0);
  for (const int code : {0, EXDEV, EINVAL, ENOSYS, EOPNOTSUPP, EPERM, EBADF, ETXTBSY, EIO, ENOSPC}) {
    const NoOwnCopy gate(code);
    CopyHints hints;
    const bool isDamage = code == EIO || code == ENOSPC;
    EXPECT_EQ(CopyEntry(at, "a", EntryKind::File, at, "b", hints).Code(), isDamage ? code : 0) << code;
    EXPECT_EQ(std::filesystem::exists(folder / "b"), !isDamage) << code;
    if (!isDamage) {
      EXPECT_TRUE(ReadWhole(folder / "b") == content) << code;
      std::filesystem::remove(folder / "b");
    }
  }
}

TEST(PosixPaths, AreShownByTheirLetters) {
  EXPECT_EQ(ShownPath("/home/ana/fi\xC8\x99\xC4\x83"), "/home/ana/fi\xBA\xE3");
  EXPECT_EQ(ShownPath("\xE4\xB8\xAD \xF0\x9F\x98\x80"), "? ?");
  EXPECT_EQ(ShownPath("fi\xBA\xE3"), "fi\xBA\xE3") << "no UTF-8: Windows-1250 already";
}

TEST(PosixStatus, IsAFailureEvenWithoutACode) {
  errno = 0;
  EXPECT_EQ(LastStatus().Code(), EIO);
  errno = EACCES;
  EXPECT_EQ(LastStatus().Code(), EACCES);
  EXPECT_TRUE(SystemStatus(ENOTDIR).IsMissing());
  EXPECT_TRUE(SystemStatus(ENOTEMPTY).IsExisting());
  EXPECT_FALSE(SystemStatus(EACCES).IsMissing() || SystemStatus(EACCES).IsExisting());
}

}  // namespace
}  // namespace kiv::platform
