#include <gmock/gmock.h>

#include <cstdlib>

#include "platform/FailingCalls.h"
#include "platform/SafeFile.h"
#include "platform/TestFolder.h"

namespace kiv::platform {
namespace {

using std::filesystem::path;

/// What every save of the tests does; the status of the first step that failed.
SystemStatus Save(const path& target, std::string_view content, Backup backup = Backup::None) {
  SafeFile file;
  SystemStatus done = file.Create(target);
  for (int part = 0; part < 2 && !done.Failed(); ++part) {
    done = file.Content().Write({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
  }
  return done.Failed() ? done : file.Commit(Durability::Flushed, backup);
}

std::size_t EntriesIn(const TestFolder& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

/// How many calls of the file layer a save makes.
std::size_t CallsOfSave(const path& target, Backup backup) {
  const FailingCalls counting(FailingCalls::kNone);
  EXPECT_EQ(Save(target, "abc", backup).Code(), 0);
  return counting.Seen().size();
}

class SafeFileWithAndWithoutBackup : public testing::TestWithParam<Backup> {};
INSTANTIATE_TEST_SUITE_P(All, SafeFileWithAndWithoutBackup, testing::Values(Backup::None, Backup::Kept));

TEST(SafeFile, MakesAFileAndReplacesIt) {
  const TestFolder folder;
  const path target = folder / path(u"fișă 中.kdp");
  EXPECT_EQ(Save(target, "unu").Code(), 0);
  EXPECT_EQ(ReadWhole(target), "unuunu");
  EXPECT_EQ(Save(target, "doi").Code(), 0);
  EXPECT_EQ(ReadWhole(target), "doidoi");
  EXPECT_EQ(EntriesIn(folder), 1U);
}

TEST(SafeFile, KeepsTheFormerFileWhereAsked) {
  const TestFolder folder;
  const path target = folder / "a.kdp";
  for (const char* const content : {"1", "2", "3"}) {
    EXPECT_EQ(Save(target, content, Backup::Kept).Code(), 0);
  }
  EXPECT_EQ(ReadWhole(target), "33");
  EXPECT_EQ(ReadWhole(folder / "a.kdp.bak"), "22");
  EXPECT_EQ(EntriesIn(folder), 2U);
}

TEST(SafeFile, IsGoneUnlessCommitted) {
  const TestFolder folder;
  WriteWhole(folder / "a", "old");
  {
    SafeFile file;
    EXPECT_EQ(file.Create(folder / "a").Code(), 0);
    EXPECT_EQ(EntriesIn(folder), 2U);
    EXPECT_EQ(file.Create(folder / "b").Code(), 0) << "the one begun before is abandoned";
    EXPECT_EQ(EntriesIn(folder), 2U);
  }
  EXPECT_EQ(EntriesIn(folder), 1U);
  EXPECT_EQ(ReadWhole(folder / "a"), "old");
}

TEST(SafeFile, IsRefusedWhereNoFileCanBe) {
  const TestFolder folder;
  std::filesystem::create_directory(folder / "sub");
  EXPECT_TRUE(Save(folder / "sub", "x").Failed());
  EXPECT_TRUE(Save(folder / "none" / "a", "x").IsMissing());
  WriteWhole(folder / "protected", "old");
  using std::filesystem::perms;
  std::filesystem::permissions(folder / "protected", perms::owner_read);
  EXPECT_TRUE(Save(folder / "protected", "x").Failed());
  EXPECT_EQ(ReadWhole(folder / "protected"), "old");
  std::filesystem::permissions(folder / "protected", perms::owner_all);
  EXPECT_EQ(EntriesIn(folder), 2U);
}

TEST(SafeFile, TakesTheLongestName) {
  const TestFolder folder;
  const path target = folder / std::string(200, 'n');
  const path longest = folder / std::string(255, 'n');
  for (const path& name : {target, longest}) {
    if (name.native().size() < 255 || std::filesystem::path::preferred_separator == '/') {
      EXPECT_EQ(Save(name, "x").Code(), 0);
      EXPECT_EQ(ReadWhole(name), "xx");
    }
  }
}

/// Every call of a save fails once: the file is the old or the new one, and nothing else is left.
TEST_P(SafeFileWithAndWithoutBackup, LosesNothingWhereACallFails) {
  const TestFolder folder;
  const path target = folder / "a.kdp";
  WriteWhole(target, "old");
  WriteWhole(folder / "a.kdp.bak", "older");
  const std::size_t calls = CallsOfSave(target, GetParam());
  EXPECT_GT(calls, 7U);
  for (std::size_t number = 0; number < calls; ++number) {
    WriteWhole(target, "old");
    // The last round may have left it as another name of the target.
    std::filesystem::remove(folder / "a.kdp.bak");
    WriteWhole(folder / "a.kdp.bak", "older");
    SystemStatus status;
    SystemCall failed{};
    {
      const FailingCalls failing(number, 28);
      status = Save(target, "new", GetParam());
      ASSERT_TRUE(failing.Failed());
      failed = failing.Seen()[number];
    }
    const std::string content = ReadWhole(target);
    EXPECT_TRUE(content == "old" || content == "newnew") << number << ": " << content;
    EXPECT_TRUE(status.Code() == 28 || content == "newnew") << number << ": reported as done";
    EXPECT_TRUE(content == "old" || status.Code() != 28 || failed == SystemCall::Flush) << number;
    EXPECT_TRUE(failed != SystemCall::Flush || status.Code() == 28) << number << ": perhaps not on the disk";
    EXPECT_EQ(EntriesIn(folder), 2U) << number << ", a call of kind " << static_cast<int>(failed);
  }
}

[[noreturn]] void SaveAndDieAt(const path& target, std::size_t number, Backup backup) {
  struct Ending : SystemCallGate {
    explicit Ending(std::size_t at) : left(at) {}
    SystemStatus Before(SystemCall /*call*/) noexcept override {
      if (left-- == 0) {
        std::_Exit(9);  // what is not with the system yet is lost, no destructor runs
      }
      return {};
    }
    std::size_t left;
  };
  Ending ending(number);
  const Replacement inUse(system_call_service, static_cast<SystemCallGate&>(ending));
  static_cast<void>(Save(target, "new", backup));
  std::_Exit(0);
}

/// The process ends before each call of a save: the file is the old or the new one, whole, and so is the backup.
TEST_P(SafeFileWithAndWithoutBackup, IsTheOldOrTheNewOneWhereTheProcessEnds) {
  const TestFolder folder;
  const path target = folder / "a.kdp";
  WriteWhole(target, "old");
  WriteWhole(folder / "a.kdp.bak", "older");
  const std::size_t calls = CallsOfSave(target, GetParam());
  std::size_t old = 0;
  for (std::size_t number = 0; number < calls; ++number) {
    std::filesystem::remove(target);
    WriteWhole(target, "old");
    EXPECT_EXIT(SaveAndDieAt(target, number, GetParam()), testing::ExitedWithCode(9), "") << number;
    const std::string content = ReadWhole(target);
    EXPECT_TRUE(content == "old" || content == "newnew") << number << ": " << content;
    old += content == "old" ? 1U : 0U;
    EXPECT_THAT(ReadWhole(folder / "a.kdp.bak"), testing::AnyOf("older", "abcabc", "old")) << number;
  }
  EXPECT_GT(old, 5U);
  EXPECT_LT(old, calls) << "the new one is there before the last call";
}

}  // namespace
}  // namespace kiv::platform
