#include <gmock/gmock.h>

#include <functional>
#include <map>

#include "Expect.h"
#include "platform/FailingCalls.h"
#include "platform/Files.h"
#include "platform/FolderEntries.h"
#include "platform/TestFolder.h"

namespace kiv::platform {
namespace {

using testing::ElementsAre;
using NativeName = std::filesystem::path::string_type;

std::span<const std::uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void MustWork(SystemStatus status) {
  EXPECT_EQ(status.Code(), 0) << SystemText(status.Code());
}

Folder Opened(const std::filesystem::path& path) {
  Folder folder;
  MustWork(folder.Open(Folder::Working(), path));
  return folder;
}

std::map<NativeName, EntryKind> EntriesOf(const Folder& folder, std::size_t bufferSize = 32'768) {
  FolderEntries entries(folder, bufferSize);
  std::map<NativeName, EntryKind> found;
  FolderEntry entry;
  for (bool more = true; more;) {
    MustWork(entries.Next(entry, more));
    if (more) {
      EXPECT_TRUE(found.emplace(entry.name.Get(), entry.kind).second) << "an entry came twice";
    }
  }
  return found;
}

TEST(Files, AreWrittenReadAndMeasured) {
  const TestFolder folder;
  const auto path = folder / "a.txt";
  File file;
  MustWork(file.Open(path, OpenMode::CreateNew));
  MustWork(file.Write(Bytes("unu doi trei")));
  MustWork(file.Flush());
  MustWork(file.Resize(7));
  MustWork(file.Close());
  EXPECT_FALSE(file.IsOpen());
  MustWork(file.Open(path, OpenMode::Append));
  MustWork(file.Write(Bytes(" patru")));
  MustWork(file.Open(path, OpenMode::ReadFile));
  EntryInfo info;
  MustWork(file.Query(info));
  EXPECT_EQ(info.kind, EntryKind::File);
  EXPECT_EQ(info.size, 13U);
  EXPECT_EQ(info.links, 1U);

  std::array<std::uint8_t, 32> buffer{};
  std::size_t count = 99;
  MustWork(file.ReadAt(4, buffer, count));
  EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count)), "doi patru");
  MustWork(file.ReadAt(13, buffer, count));
  EXPECT_EQ(count, 0U);
  MustWork(file.ReadAt(UINT64_MAX - 40, buffer, count));
  EXPECT_EQ(count, 0U);
  MustWork(file.ReadAt(4, std::span(buffer).first(3), count));
  EXPECT_EQ(count, 3U);
}

TEST(Files, AreReadInOrder) {
  const TestFolder folder;
  WriteWhole(folder / "a", "unu doi");
  File file;
  MustWork(file.Open(folder / "a", OpenMode::ReadStream));
  std::array<std::uint8_t, 4> buffer{};
  std::string read;
  for (std::size_t count = 1; count > 0;) {
    MustWork(file.Read(buffer, count));
    read.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
  }
  EXPECT_EQ(read, "unu doi");
}

TEST(Files, ModesTreatWhatExists) {
  const TestFolder folder;
  const auto path = folder / "a";
  File file;
  EXPECT_TRUE(file.Open(path, OpenMode::ReadFile).IsMissing());
  EXPECT_TRUE(file.Open(folder / "none" / "a", OpenMode::ReadFile).IsMissing());
  EXPECT_FALSE(file.IsOpen());
  MustWork(file.Open(path, OpenMode::Overwrite));
  MustWork(file.Write(Bytes("unu")));
  EXPECT_TRUE(file.Open(path, OpenMode::CreateNew).IsExisting());
  EXPECT_EQ(ReadWhole(path), "unu");
  MustWork(file.Open(path, OpenMode::Append));
  EXPECT_EQ(ReadWhole(path), "unu");
  MustWork(file.Open(path, OpenMode::Overwrite));
  EXPECT_EQ(ReadWhole(path), "");
  EXPECT_TRUE(file.Open(folder.Path(), OpenMode::ReadFile).Failed());
  EXPECT_FALSE(file.IsOpen());
}

TEST(Files, AreReachedThroughAFolderThatWasMovedAway) {
  const TestFolder folder;
  MustWork(MakeFolder(Folder::Working(), folder / "before"));
  const Folder open = Opened(folder / "before");
  MustWork(Rename(Folder::Working(), folder / "before", Folder::Working(), folder / "after", Existing::Refused));
  const std::filesystem::path name = "a";
  File file;
  MustWork(file.Open(open, name, OpenMode::CreateNew));
  MustWork(file.Write(Bytes("unu")));
  MustWork(file.Close());
  EXPECT_EQ(ReadWhole(folder / "after" / "a"), "unu");
  EntryInfo info;
  MustWork(Query(open, name, Links::AsThemselves, info));
  EXPECT_EQ(info.size, 3U);
}

TEST(Files, WithAZeroInTheNameAreNotThere) {
  const TestFolder folder;
  WriteWhole(folder / "a", "unu");
  auto name = (folder / "a").native();
  name.push_back('\0');
  name.push_back('b');
  File file;
  EXPECT_TRUE(file.Open(name, OpenMode::ReadFile).IsMissing());
}

TEST(Files, TakeTimesAndAttributes) {
  const TestFolder folder;
  File file;
  MustWork(file.Open(folder / "a", OpenMode::CreateNew));
  for (const FileTime written : {FileTime{1'000'000'000, 123'456'700}, FileTime{-5, 0}, FileTime{4'000'000'000, 900}}) {
    const FileTime read = {written.seconds + 10, 0};
    MustWork(file.SetTimes(read, written));
    EntryInfo info;
    MustWork(file.Query(info));
    EXPECT_EQ(info.written, written) << written.seconds;
    EXPECT_EQ(info.read, read) << written.seconds;
  }
  EntryInfo like;
  MustWork(file.Query(like));
  like.attributes = like.attributes == 0644 ? 0600 : like.attributes == 0x20 ? 0x22 : 0644;
  MustWork(file.SetAttributes(like));
  EntryInfo now;
  MustWork(file.Query(now));
  EXPECT_EQ(now.attributes, like.attributes);
}

TEST(Files, AreRenamedOverOthersWhereAsked) {
  const TestFolder folder;
  WriteWhole(folder / "a", "new");
  WriteWhole(folder / "b", "old");
  const Folder at = Opened(folder.Path());
  const std::filesystem::path a = "a";
  const std::filesystem::path b = "b";
  EXPECT_TRUE(Rename(at, a, at, b, Existing::Refused).IsExisting());
  EXPECT_EQ(ReadWhole(folder / "b"), "old");
  MustWork(Rename(at, a, Folder::Working(), folder / "b", Existing::Replaced));
  EXPECT_EQ(ReadWhole(folder / "b"), "new");
  EXPECT_THAT(EntriesOf(at), testing::SizeIs(1));
  EXPECT_TRUE(Rename(at, a, at, b, Existing::Replaced).IsMissing());
}

TEST(Files, AndFoldersAreRemovedEachByItsOwnCall) {
  const TestFolder folder;
  const Folder at = Opened(folder.Path());
  const std::filesystem::path file = "file";
  const std::filesystem::path sub = "sub";
  WriteWhole(folder / file, "unu");
  MustWork(MakeFolder(at, sub));
  EXPECT_TRUE(MakeFolder(at, sub).IsExisting());
  EXPECT_TRUE(MakeFolder(at, file).IsExisting());
  WriteWhole(folder / sub / "inside", "");
  EXPECT_TRUE(RemoveFile(at, sub).Failed());
  EXPECT_TRUE(RemoveFolder(at, file).Failed());
  EXPECT_TRUE(RemoveFolder(at, sub).Failed()) << "it is not empty";
  MustWork(RemoveFile(Folder::Working(), folder / sub / "inside"));
  MustWork(RemoveFolder(at, sub));
  MustWork(RemoveFile(at, file));
  EXPECT_TRUE(RemoveFile(at, file).IsMissing());
  EXPECT_TRUE(RemoveFolder(at, sub).IsMissing());
  EXPECT_THAT(EntriesOf(at), testing::IsEmpty());
}

TEST(Files, HaveAnIdentity) {
  const TestFolder folder;
  WriteWhole(folder / "a", "");
  WriteWhole(folder / "b", "");
  std::filesystem::create_hard_link(folder / "a", folder / "second name");
  EntryInfo a;
  EntryInfo b;
  EntryInfo second;
  MustWork(Query(Folder::Working(), folder / "a", Links::Followed, a));
  MustWork(Query(Folder::Working(), folder / "b", Links::Followed, b));
  MustWork(Query(Folder::Working(), folder / "second name", Links::Followed, second));
  EXPECT_EQ(a.identity, second.identity);
  EXPECT_NE(a.identity, b.identity);
  EXPECT_EQ(a.links, 2U);
}

TEST(Folders, ListEveryEntryOnce) {
  const TestFolder folder;
  const Folder at = Opened(folder.Path());
  std::map<NativeName, EntryKind> expected;
  for (int i = 0; i < 300; ++i) {
    const std::filesystem::path name = u"ș中 " + std::filesystem::path(std::to_string(i)).u16string();
    const bool isFolder = i % 3 == 0;
    if (isFolder) {
      MustWork(MakeFolder(at, name));
    } else {
      File file;
      MustWork(file.Open(at, name, OpenMode::CreateNew));
    }
    expected.emplace(name.native(), isFolder ? EntryKind::Folder : EntryKind::File);
  }
  EXPECT_EQ(EntriesOf(at), expected);
  EXPECT_EQ(EntriesOf(at, 1024), expected) << "a buffer for a few entries, from the beginning again";
}

TEST(Folders, AreFolders) {
  const TestFolder folder;
  WriteWhole(folder / "a", "");
  Folder open;
  EXPECT_TRUE(open.Open(Folder::Working(), folder / "a").Failed());
  EXPECT_TRUE(open.Open(Folder::Working(), folder / "none").IsMissing());
  EXPECT_FALSE(open.IsOpen());
  EntryInfo info;
  MustWork(Opened(folder.Path()).Query(info));
  EXPECT_EQ(info.kind, EntryKind::Folder);
  MustWork(open.Open(Folder::Working(), folder.Path(), Links::AsThemselves));
  MustWork(open.Flush());
}

TEST(Folders, AreNamedInFullHoweverLongTheirPath) {
  const TestFolder folder;
  auto path = folder.Path();
  for (int level = 0; level < 12; ++level) {
    path /= std::string(40, static_cast<char>('a' + level));
    MustWork(MakeFolder(Folder::Working(), path));
  }
  File file;
  MustWork(file.Open(path / "deep", OpenMode::CreateNew));
  MustWork(file.Close());
  MustWork(RemoveFile(Folder::Working(), path / "deep"));
  for (; path != folder.Path(); path = path.parent_path()) {
    MustWork(RemoveFolder(Folder::Working(), path));
  }
}

TEST(SystemStatus, NamesOperationPathAndCode) {
  const std::filesystem::path path = u"dosar/fișă 中";
  const Text shown = FromUtf8("dosar/fişă ?");
  try {
    SystemStatus(2).OrThrow("Operatie", path);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), 2);
    EXPECT_EQ(error.what(), "Operatie: " + shown + ": " + SystemText(2));
  }
  ExpectError<OsError>([] { SystemStatus(5).OrThrow("Operatie"); }, "Operatie: " + SystemText(5));
  SystemStatus().OrThrow("Operatie", path);
}

/// Each call of the layer, made to fail, gives the failure's code and leaves nothing open.
TEST(Files, GiveTheCodeOfEachCallThatFails) {
  const TestFolder folder;
  WriteWhole(folder / "a", "unu");
  const Folder at = Opened(folder.Path());
  File file;
  std::array<std::uint8_t, 4> buffer{};
  std::size_t count = 0;
  EntryInfo info;
  const std::filesystem::path a = "a";
  const std::filesystem::path b = "b";
  struct Row {
    const char* what;
    std::function<SystemStatus()> call;
  };
  const std::array<Row, 15> rows = {{
      {"open", [&] { return file.Open(at, a, OpenMode::ReadFile); }},
      {"create", [&] { return file.Open(at, b, OpenMode::CreateNew); }},
      {"write", [&] { return file.Write(Bytes("x")); }},
      {"flush", [&] { return file.Flush(); }},
      {"resize", [&] { return file.Resize(1); }},
      {"query", [&] { return file.Query(info); }},
      {"set times", [&] { return file.SetTimes({}, {}); }},
      {"set attributes", [&] { return file.SetAttributes(info); }},
      {"close", [&] { return file.Close(); }},
      {"query by name", [&] { return Query(at, b, Links::Followed, info); }},
      {"rename", [&] { return Rename(at, b, at, a, Existing::Replaced); }},
      {"make folder", [&] { return MakeFolder(at, b); }},
      {"remove folder", [&] { return RemoveFolder(at, b); }},
      {"remove file", [&] { return RemoveFile(at, a); }},
      {"read",
       [&] {
         File reading;
         const SystemStatus opened = reading.Open(folder / "r", OpenMode::ReadStream);
         return opened.Failed() ? opened : reading.ReadAt(0, buffer, count);
       }},
  }};
  WriteWhole(folder / "r", "");
  for (const Row& row : rows) {
    std::size_t number = 0;
    for (;; ++number) {
      const FailingCalls failing(number, 28);
      const SystemStatus status = row.call();
      if (!failing.Failed()) {
        break;
      }
      EXPECT_TRUE(status.Code() == 28 || failing.Seen()[number] == SystemCall::Close) << row.what << ", " << number;
    }
    EXPECT_GT(number, 0U) << row.what << " makes no call";
  }
  EXPECT_THAT(EntriesOf(at), testing::SizeIs(1));
}

}  // namespace
}  // namespace kiv::platform
