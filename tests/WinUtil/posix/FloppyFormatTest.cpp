// No system has a dialog for this but Windows.
#include <gmock/gmock.h>

#include <cerrno>

#include "kivtools/WinUtil/Floppy.h"
#include "platform/Diskettes.h"

namespace kiv {
namespace {

TEST(FloppyFormatWithoutWindows, IsNotSupported) {
  const struct {
    const char* name;
    std::int32_t (*format)(Handle owner);
  } cases[] = {{"FullFormatDriveA", FullFormatDriveA}, {"FullFormatDriveB", FullFormatDriveB}};
  for (const auto& [name, format] : cases) {
    try {
      format(0);
      ADD_FAILURE();
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), ENOTSUP);
      EXPECT_THAT(error.what(), testing::StartsWith(name));
    }
  }
  EXPECT_THROW((void)platform::diskettes_service.Current().ShowFormatDialog("x", 0, 0), OsError);
}

}  // namespace
}  // namespace kiv
