#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <thread>

#include "Expect.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileLists.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "kivtools/WinUtil/TreeWatcher.h"
#include "platform/FailingCalls.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

/// Writes down what it is told: files as "path size", folders as "path/".
class Recorder : public TreeWatcher {
 public:
  void OnFile(TextView path, std::uint64_t size) override { told.push_back(Text(path) + " " + std::to_string(size)); }
  void OnFolder(TextView path) override { told.push_back(Text(path) + "/"); }
  void OnFailure(TextView path, const OsError& error) override {
    paths.emplace_back(path);
    failures.emplace_back(error.what());
    codes.push_back(error.Code());
  }

  StringList told;
  StringList paths;
  StringList failures;
  std::vector<std::int32_t> codes;
};

class TreeWatchers : public testing::Test {
 protected:
  TreeWatchers() { MakeSource(); }

  void MakeSource() const {
    for (const auto& [name, content] : {std::pair{"sursa/a", "123"}, {"sursa/s/b", "12345"}, {"sursa/s/t/c", ""}}) {
      std::filesystem::create_directories((folder_ / name).parent_path());
      WriteWhole(folder_ / name, content);
    }
  }
  [[nodiscard]] Text At(const path& name) const {
    path native = folder_ / name;
    return platform::TextFromPath(native.make_preferred());
  }
  void Copy() { RecursiveCopyWithExt(At("sursa"), At("copie"), {"*"}, label_, 350); }

  /// Lets each system call of `work` fail once: it is told, unless all is done nevertheless.
  void ExpectEachFailureIsTold(const std::function<void()>& prepare, const std::function<void()>& work,
                               const std::function<bool()>& isDone) const {
    constexpr std::int32_t kCode = 5;
    std::size_t calls = 0;
    {
      prepare();
      const FailingCalls counting(FailingCalls::kNone);
      const Recorder watcher;
      work();
      EXPECT_THAT(watcher.failures, IsEmpty());
      calls = counting.Seen().size();
    }
    std::size_t told = 0;
    for (std::size_t failing = 0; failing < calls; ++failing) {
      prepare();
      const Recorder watcher;
      {
        const FailingCalls fails(failing, kCode);
        work();
      }
      told += watcher.failures.empty() ? 0U : 1U;
      EXPECT_TRUE(isDone() || !watcher.failures.empty()) << "call " << failing;
      for (std::size_t i = 0; i < watcher.failures.size(); ++i) {
        EXPECT_THAT(watcher.failures[i], testing::HasSubstr(watcher.paths[i]));
      }
      EXPECT_TRUE(watcher.codes.empty() || watcher.codes.front() == kCode) << "call " << failing;
    }
    EXPECT_GT(told, 3U);
  }

  TestFolder folder_;
  host::headless::Label label_{nullptr, "lblFisier"};
};

TEST_F(TreeWatchers, AreToldWhatIsDone) {
  Recorder watcher;
  Copy();
  EXPECT_THAT(watcher.told,
              UnorderedElementsAre(At("copie") + "/", At("sursa/a") + " 3", At("copie/s") + "/", At("sursa/s/b") + " 5",
                                   At("copie/s/t") + "/", At("sursa/s/t/c") + " 0"));
  EXPECT_EQ(watcher.told.front(), At("copie") + "/");
  watcher.told.clear();
  const TreeSize size = MeasureTree(At("sursa"));
  EXPECT_EQ(size.files, 3U);
  EXPECT_EQ(size.folders, 3U);
  EXPECT_EQ(size.bytes, 8U);
  EXPECT_THAT(watcher.told,
              UnorderedElementsAre(At("sursa") + "/", At("sursa/a") + " 3", At("sursa/s") + "/", At("sursa/s/b") + " 5",
                                   At("sursa/s/t") + "/", At("sursa/s/t/c") + " 0"));
  watcher.told.clear();
  {
    Recorder later;
    RecursiveDelete(At("sursa"));
    EXPECT_THAT(later.told, UnorderedElementsAre(At("sursa/a") + " 3", At("sursa/s/b") + " 5", At("sursa/s/t/c") + " 0",
                                                 At("sursa/s/t") + "/", At("sursa/s") + "/", At("sursa") + "/"));
    EXPECT_EQ(later.told.back(), At("sursa") + "/");
  }
  std::thread([&] { RecursiveDelete(At("copie")); }).join();
  EXPECT_THAT(watcher.told, IsEmpty()) << "another thread, another watcher";
  EXPECT_THAT(watcher.failures, IsEmpty());
}

TEST_F(TreeWatchers, AreToldOfWhatIsMissing) {
  const Recorder watcher;
  static_cast<void>(InitFileList(At("lipsa"), {"*"}));
  static_cast<void>(InitFileListMaxDepth(At("sursa/a"), {"*"}, 0));
  RecursiveDelete(At("lipsa"));
  RecursiveDelete(At("sursa/a"));
  RecursiveCopyWithExtSkipFolders(At("lipsa"), At("copie"), {"x"}, label_, "", 350);
  RecursiveCopyWithExt(At("sursa"), At("sursa/a/sub"), {"*"}, label_, 350);
  EXPECT_THAT(watcher.paths,
              ElementsAre(At("lipsa"), At("sursa/a"), At("lipsa"), At("sursa/a"), At("lipsa"), At("sursa/a/sub")));
  EXPECT_THAT(watcher.failures, ElementsAre(StartsWith("InitFileList: "), StartsWith("InitFileListMaxDepth: "),
                                            StartsWith("RecursiveDelete: "), StartsWith("RecursiveDelete: "),
                                            StartsWith("RecursiveCopyWithExtSkipFolders: " + At("lipsa") + ": "),
                                            StartsWith("RecursiveCopyWithExt: " + At("sursa/a/sub") + ": ")));
  EXPECT_THROW(static_cast<void>(MeasureTree(At("lipsa"))), OsError);
  EXPECT_EQ(MeasureTree(At("sursa/a")).bytes, 3U);
}

TEST_F(TreeWatchers, AreToldOfEachFailedCallThatLeavesSomethingUndone) {
  StringList files;
  ExpectEachFailureIsTold([] {}, [&] { files = InitFileList(At("sursa"), {"*"}); }, [&] { return files.size() == 3; });
  ExpectEachFailureIsTold([&] { std::filesystem::remove_all(folder_ / "copie"); }, [&] { Copy(); },
                          [&] {
                            return ReadWhole(folder_ / "copie" / "a") == "123" &&
                                   ReadWhole(folder_ / "copie" / "s" / "b") == "12345" &&
                                   std::filesystem::exists(folder_ / "copie" / "s" / "t" / "c");
                          });
  ExpectEachFailureIsTold([&] { MakeSource(); }, [&] { RecursiveDelete(At("sursa")); },
                          [&] { return !std::filesystem::exists(folder_ / "sursa"); });
}

TEST_F(TreeWatchers, DoNotHearOfAFileThatGoesWhileATreeIsMeasured) {
  constexpr std::int32_t kNotFound = 2;  // on both systems
  std::vector<platform::SystemCall> calls;
  {
    const FailingCalls counting(FailingCalls::kNone);
    static_cast<void>(MeasureTree(At("sursa")));
    calls = counting.Seen();
  }
  std::size_t gone = 0;
  const auto listed = std::find(calls.begin(), calls.end(), platform::SystemCall::List);
  for (auto call = listed; call != calls.end(); ++call) {
    if (*call == platform::SystemCall::Query) {
      const Recorder watcher;
      const FailingCalls fails(static_cast<std::size_t>(call - calls.begin()), kNotFound);
      // On Windows folders are asked what they are too; those that have gone are told.
      if (MeasureTree(At("sursa")).files == 2U && watcher.failures.empty()) {
        ++gone;
      }
    }
  }
  EXPECT_EQ(gone, 3U);
}

TEST_F(TreeWatchers, AreToldOfWhatStaysAndNotOfTheFoldersAroundIt) {
  class Guard : public Recorder {
   public:
    explicit Guard(path kept) : kept_(std::move(kept)) {}
    void OnFile(TextView path, std::uint64_t size) override {
      Recorder::OnFile(path, size);
      if (!std::filesystem::exists(kept_)) {
        WriteWhole(kept_, "nou");  // just when its folder has been read
      }
    }

   private:
    path kept_;
  } watcher(folder_ / "sursa" / "s" / "t" / "nou");
  RecursiveDelete(At("sursa/s/t"));
  EXPECT_THAT(watcher.paths, ElementsAre(At("sursa/s/t")));
  watcher.paths.clear();
  WriteWhole(folder_ / "sursa" / "s" / "t" / "c", "");
  RecursiveDelete(At("sursa"));
  EXPECT_THAT(watcher.paths, ElementsAre(At("sursa/s/t"))) << "s and sursa stay for what is in them";
}

TEST_F(TreeWatchers, EndAnOperation) {
  class Cancel : public TreeWatcher {
   public:
    void OnFile(TextView /*path*/, std::uint64_t /*size*/) override { throw Error("destul"); }
  };
  {
    const Cancel watcher;
    ExpectError<Error>([&] { Copy(); }, "destul");
    ExpectError<Error>([&] { static_cast<void>(MeasureTree(At("sursa"))); }, "destul");
  }
  Copy();
  EXPECT_EQ(ReadWhole(folder_ / "copie" / "s" / "b"), "12345");
}

}  // namespace
}  // namespace kiv
