// The library is unloaded while its thread still waits for a form: the code stays until the thread has ended.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "kivtools/Loader.h"
#include "kivtools/kiv.h"
#include "platform/ProcessState.h"

namespace kiv {
namespace {

std::atomic<int> visible{0};
std::atomic<int> maximised{0};

/// A host of one small monitor and one form that is not shown yet.
KivHostTable LentTable() {
  KivHostTable table{};
  table.size = sizeof table;
  table.kind = [](void*, KivControl*) -> std::int32_t { return KIV_CONTROL_FORM; };
  table.bounds = [](void*, KivControl*, KivRect* bounds) { *bounds = {0, 0, 100, 100}; };
  table.setBounds = [](void*, KivControl*, const KivRect*) {};
  table.window = [](void*, KivControl* form) -> void* { return form; };
  table.windowVisible = [](void*, void*) -> std::int32_t { return visible; };
  table.maximiseWindow = [](void*, void*) { ++maximised; };
  table.monitors = [](void*, KivMonitor* monitors, std::size_t) -> std::size_t {
    monitors[0] = {{0, 0, 800, 600}, {0, 0, 800, 600}};
    return 1;
  };
  table.mousePosition = [](void*, KivPoint* position) { *position = {1, 1}; };
  return table;
}

template <class Condition>
bool Soon(Condition condition) {
  for (int attempt = 0; attempt < 5'000 && !condition(); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return condition();
}

TEST(HelperThread, KeepsTheLibraryLoadedUntilItEnds) {
  const std::string file = std::filesystem::path(KIV_SHARED_LIBRARY).filename().string();
  const KivHostTable table = LentTable();
  for (int round = 1; round <= 3; ++round) {
    visible = 0;
    {
      const LoadedPackage package(KIV_SHARED_LIBRARY);
      int form = 0;
      ASSERT_EQ(package.Function<decltype(KivHostInstall)>("KivHostInstall")(&table), KIV_OK);
      auto* const fill =
          package.Function<decltype(KivCentreazaSiRedimensioneazaForm)>("KivCentreazaSiRedimensioneazaForm");
      ASSERT_EQ(fill(reinterpret_cast<KivControl*>(&form)), KIV_OK);
      ASSERT_EQ(fill(reinterpret_cast<KivControl*>(&form)), KIV_OK);
      package.Function<decltype(KivHostRemove)>("KivHostRemove")();
    }
    EXPECT_TRUE(test::IsLoaded(file));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(test::IsLoaded(file));
    EXPECT_EQ(maximised, 2 * (round - 1));
    visible = 1;
    EXPECT_TRUE(Soon([round] { return maximised == 2 * round; }));
    EXPECT_TRUE(Soon([&file] { return !test::IsLoaded(file); })) << "the last thread gives the library back";
  }
}

}  // namespace
}  // namespace kiv
