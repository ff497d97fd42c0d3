#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

#include "Expect.h"
#include "kivtools/Loader.h"
#include "kivtools/Package.h"
#include "kivtools/kiv.h"
#include "platform/ProcessState.h"
#include "platform/TestFolder.h"

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

TEST(LoadedPackage, SaysWhichFileItCannotLoadAndWhy) {
  const TestFolder folder;
  const std::filesystem::path notALibrary = folder / "text.dll";
  std::ofstream(notALibrary) << "no library";
  constexpr bool kPosix = std::filesystem::path::preferred_separator == '/';
  const struct {
    std::filesystem::path path;
    Text shown;
    std::int32_t code;
  } rows[] = {
      {folder / u"lipsă 中.dll", FromUtf8("lipsă ?.dll"), kPosix ? 2 : 126},
      {notALibrary, "text.dll", kPosix ? 8 : 193},
  };
  for (const auto& [path, shown, code] : rows) {
    try {
      const LoadedPackage package = LoadedPackage::FromNativePath(path);
      ADD_FAILURE() << shown;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), code) << error.what();
      EXPECT_NE(TextView(error.what()).find(shown), TextView::npos) << error.what();
      EXPECT_EQ(TextView(error.what()).substr(0, 15), "LoadedPackage: ");
    }
  }
}

TEST(LoadedPackage, RefusesALibraryThatIsNoPackage) {
  ExpectError<Error>([] { const LoadedPackage package(KIV_FOREIGN_LIBRARY); },
                     "LoadedPackage: biblioteca nu exporta Finalize");
}

}  // namespace
}  // namespace kiv
