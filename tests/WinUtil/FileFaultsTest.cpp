// Every system call of the file operations fails once: sources stay as they are, under a final name is a whole file.
#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <iostream>

#include "Expect.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "platform/FailingCalls.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;

constexpr std::int32_t kCode = 5;  // a failure of the device on POSIX, refused access on Windows

class FileFaults : public testing::Test {
 protected:
  FileFaults() {
    Make("sursa/a", small_);
    Make("sursa/s/b", large_);
  }

  void Make(const path& name, std::string_view content) {
    std::filesystem::create_directories((folder_ / name).parent_path());
    WriteWhole(folder_ / name, content);
  }
  [[nodiscard]] Text At(const path& name) const {
    path native = folder_ / name;
    return platform::TextFromPath(native.make_preferred());
  }

  /// Lets each call of `work` fail once, with `prepare` before and `check` after; prints how many there were.
  void LetEachFail(const std::function<void()>& prepare, const std::function<void()>& work,
                   const std::function<void()>& check) const {
    std::size_t calls = 0;
    {
      prepare();
      const FailingCalls counting(FailingCalls::kNone);
      work();
      calls = counting.Seen().size();
    }
    EXPECT_GT(calls, 4U);
    for (std::size_t failing = 0; failing < calls; ++failing) {
      prepare();
      std::vector<platform::SystemCall> seen;
      {
        const FailingCalls fails(failing, kCode);
        work();
        EXPECT_TRUE(fails.Failed());
        seen = fails.Seen();
      }
      check();
      EXPECT_EQ(ReadWhole(folder_ / "sursa" / "a"), small_) << failing;
      EXPECT_EQ(ReadWhole(folder_ / "sursa" / "s" / "b"), large_) << failing;
      if (HasFailure()) {
        ADD_FAILURE() << "when call " << failing << " failed, kind " << static_cast<int>(seen.at(failing));
        return;
      }
    }
    std::cout << calls << " calls failed, one at a time\n";
  }

  /// Everything below a folder is one of these files, whole.
  void ExpectOnly(const path& folder, const std::vector<std::string>& contents) const {
    if (!std::filesystem::exists(folder_ / folder)) {
      return;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_ / folder)) {
      const std::string name = entry.path().filename().string();
      if (entry.is_regular_file() && name.find(".tmp-") == std::string::npos) {
        EXPECT_THAT(contents, testing::Contains(ReadWhole(entry.path()))) << entry.path();
      }
    }
  }

  TestFolder folder_;
  std::string small_ = "mic";
  std::string large_ = std::string(300'000, 'x') + "mare";
  host::headless::Label label_{nullptr, "lblFisier"};
};

TEST_F(FileFaults, LetNoTreeBeCopiedIntoItselfWithoutEnd) {
  const auto prepare = [this] { std::filesystem::remove_all(folder_ / "sursa" / "s" / "copie"); };
  LetEachFail(
      prepare, [&] { RecursiveCopyWithExt(At("sursa"), At("sursa/s/copie"), {"*"}, label_, 350); },
      [this] { EXPECT_FALSE(std::filesystem::exists(folder_ / "sursa/s/copie/s/copie")); });
}

TEST_F(FileFaults, LeaveNoHalfOfANewCopy) {
  LetEachFail([&] { std::filesystem::remove_all(folder_ / "copie"); },
              [&] { RecursiveCopyWithExt(At("sursa"), At("copie"), {"*"}, label_, 350); },
              [&] {
                ExpectOnly("copie", {small_, large_});
              });
}

TEST_F(FileFaults, LeaveTheFormerFileOrTheNewOne) {
  LetEachFail(
      [&] {
        Make("copie/a", "vechi");
        Make("copie/s/b", "vechi");
      },
      [&] { RecursiveCopyWithExt(At("sursa"), At("copie"), {"*"}, label_, 350); },
      [&] {
        ExpectOnly("copie", {small_, large_, "vechi"});
        EXPECT_TRUE(std::filesystem::exists(folder_ / "copie" / "a"));
        EXPECT_TRUE(std::filesystem::exists(folder_ / "copie" / "s" / "b"));
      });
}

TEST_F(FileFaults, DeleteNothingElse) {
  LetEachFail(
      [&] {
        Make("sters/a", "x");
        Make("sters/s/b", "x");
      },
      [&] { RecursiveDelete(At("sters")); }, [] {});
}

TEST_F(FileFaults, AreToldWhenFilesAreCompared) {
  Make("alta", large_);
  LetEachFail([] {},
              [&] {
                try {
                  EXPECT_TRUE(ComparaFisiere(At("alta"), At("sursa/s/b")));
                } catch (const OsError& error) {
                  EXPECT_EQ(error.Code(), kCode);
                  EXPECT_THAT(error.what(), testing::StartsWith("ComparaFisiere: "));
                }
              },
              [] {});
}

TEST_F(FileFaults, AreToldWhenAFileIsSaved) {
  LetEachFail([&] { Make("salvat/a", "vechi"); },
              [&] {
                try {
                  SalveazaFisier(At("salvat/a"), large_);
                } catch (const OsError& error) {
                  EXPECT_EQ(error.Code(), kCode);
                  EXPECT_THAT(error.what(), testing::StartsWith("SalveazaFisier: " + At("salvat/a")));
                }
              },
              [&] {
                ExpectOnly("salvat", {large_, "vechi"});
              });
  SalveazaFisier(At("salvat/a"), large_);
  EXPECT_EQ(ReadWhole(folder_ / "salvat" / "a"), large_);
}

TEST_F(FileFaults, AreToldWhenOneFileIsCopied) {
  using testing::AnyOf;
  using testing::StartsWith;
  const auto copy = [&] {
    try {
      CopyNoBuffering(At("sursa/s/b"), At("copie"));
      EXPECT_EQ(ReadWhole(folder_ / "copie"), large_) << "a failure that nobody told";
    } catch (const Error& error) {
      EXPECT_THAT(error.what(), AnyOf(StartsWith("VirtualAlloc a esuat"), StartsWith("Nu pot deschide "),
                                      StartsWith("CopyNoBuffering: " + At("copie")),
                                      StartsWith("Am incercat sa citesc 2048 bytes; Am reusit sa citesc numai 0 bytes"),
                                      StartsWith("Am incercat sa citesc 1000 bytes; Am reusit")));
    }
  };
  LetEachFail([&] { std::filesystem::remove(folder_ / "copie"); }, copy, [] {});
  LetEachFail([&] { Make("copie", "vechi"); }, copy,
              [&] { EXPECT_THAT(ReadWhole(folder_ / "copie"), AnyOf("vechi", large_)); });
}

}  // namespace
}  // namespace kiv
