// What Windows shows of the library and of the program of this build.
#include <gtest/gtest.h>

#include "CEVersionInfo/win32/SystemReader.h"
#include "kivtools/kiv.h"

namespace kiv {
namespace {

TEST(OwnFiles, HaveAVersionResourceWithEveryField) {
  const struct {
    const char* path;
    Text description;
    Text internalName;
    Text fileName;
    std::uint32_t fileType;
  } files[] = {
      {KIV_SHARED_LIBRARY, "Utility library for Romanian business and accounting applications", "KivToolsRePack",
       "KivToolsRePack.dll", VFT_DLL},
      {KIV_PROGRAM, "Romanian business texts and checks on the command line", "kivtools", "kivtools.exe", VFT_APP},
  };
  const Text version = KIV_VERSION;
  for (const auto& file : files) {
    test::Answer answer = test::AskLibrary(file.path);
    EXPECT_EQ(test::AskSystem(file.path), answer) << file.path;
    answer.pop_back();  // the fixed information is looked at below
    const test::Answer expected = {"The KivToolsRePack authors",
                                   file.description,
                                   version + ".0",
                                   file.internalName,
                                   "Copyright (c) 2026 The KivToolsRePack authors",
                                   "None",
                                   file.fileName,
                                   "KivToolsRePack",
                                   version,
                                   "MIT licence"};
    EXPECT_EQ(answer, expected);

    TCEVersionInfo info;
    info.GetInfo(file.path);
    EXPECT_EQ(info.MajorVersion + '.' + info.MinorVersion + '.' + info.Release, version);
    EXPECT_EQ(info.FixedInfo().fileType, file.fileType);
    EXPECT_EQ(std::to_string(info.FixedInfo().fileVersionHigh >> 16U) + '.' +
                  std::to_string(info.FixedInfo().fileVersionHigh & 0xFFFFU) + '.' +
                  std::to_string(info.FixedInfo().fileVersionLow >> 16U),
              version);
  }
}

}  // namespace
}  // namespace kiv
