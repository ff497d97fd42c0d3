#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

#include "Expect.h"
#include "kivtools/Loader.h"
#include "kivtools/Package.h"
#include "kivtools/kiv.h"
#include "platform/ProcessState.h"

namespace kiv {
namespace {

TEST(LoadedPackage, CallsTheSharedLibrary) {
  const LoadedPackage package(KIV_SHARED_LIBRARY);
  char text[64] = "";
  package.Function<decltype(KivInLitere)>("KivInLitere")(21, text, sizeof text);
  EXPECT_STREQ(text, "DOUAZECISIUNU");
  ExpectError<Error>([&package] { std::ignore = package.Symbol("KivNothing"); },
                     "LoadedPackage: biblioteca nu exporta KivNothing");
}

TEST(LoadedPackage, TheLoadedLibraryKnowsItsModule) {
  const LoadedPackage package(KIV_SHARED_LIBRARY);
  auto* const getModule = package.Function<const PackageModule&()>("_ZN3kiv16GetPackageModuleEv");  // GetPackageModule
  const PackageModule& module = getModule();
  EXPECT_TRUE(module.isLibrary);
  EXPECT_TRUE(module.attached);
  EXPECT_EQ(module.handle, test::ModuleOf(reinterpret_cast<const void*>(getModule)));
  EXPECT_NE(module.handle, test::ModuleOf(reinterpret_cast<const void*>(&test::ModuleOf))) << "not this program";
}

TEST(LoadedPackage, SaysWhichFileItCannotLoad) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "kivtools-loader-test";
  std::filesystem::create_directories(folder);
  const std::filesystem::path notALibrary = folder / "text.dll";
  std::ofstream(notALibrary) << "no library";
  for (const std::filesystem::path& path : {folder / "missing.dll", notALibrary}) {
    try {
      const LoadedPackage package = LoadedPackage::FromNativePath(path);
      ADD_FAILURE() << path;
    } catch (const OsError& error) {
      EXPECT_NE(TextView(error.what()).find(path.filename().string()), TextView::npos) << error.what();
    }
  }
  std::filesystem::remove_all(folder);
}

TEST(LoadedPackage, RefusesALibraryThatIsNoPackage) {
  ExpectError<Error>([] { const LoadedPackage package(KIV_FOREIGN_LIBRARY); },
                     "LoadedPackage: biblioteca nu exporta Finalize");
}

}  // namespace
}  // namespace kiv
