// Drive A: is the system's.
#include <windows.h>

#include "WinUtil/FloppyHost.h"

namespace kiv::floppy {
namespace {

TEST(FloppyRoot, IsTheSystemsDrive) {
  try {
    SetFloppyRoot("C:\\disc");
    ADD_FAILURE();
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), ERROR_NOT_SUPPORTED);
    EXPECT_THAT(error.what(), testing::StartsWith("SetFloppyRoot: C:\\disc: "));
  }
}

TEST(FloppyRoot, IsAskedWithoutABoxOfTheSystem) {
  const DWORD before = GetThreadErrorMode();
  EXPECT_EQ(StareFloppy(), nuExista);  // no drive A: here
  EXPECT_EQ(GetThreadErrorMode(), before);
}

}  // namespace
}  // namespace kiv::floppy
