#include <gtest/gtest.h>
#include <windows.h>

#include "kivtools/WinUtil/Paths.h"

namespace kiv {
namespace {

TEST(DeviceInfo, TellsWhatTheSystemTellsOfARealDevice) {
  const HDC screen = GetDC(nullptr);
  Text expected;
  const struct {
    const char* name;
    int index;
  } sizes[] = {{"HORZSIZE", HORZSIZE},
               {"; VERTSIZE", VERTSIZE},
               {"; HORZRES", HORZRES},
               {"; VERTRES", VERTRES},
               {"; PHYSICALWIDTH", PHYSICALWIDTH},
               {"; PHYSICALHEIGHT", PHYSICALHEIGHT},
               {"; PHYSICALOFFSETX", PHYSICALOFFSETX},
               {"; PHYSICALOFFSETY", PHYSICALOFFSETY}};
  for (const auto& [name, index] : sizes) {
    expected += Text(name) + "=" + std::to_string(GetDeviceCaps(screen, index));
  }
  EXPECT_EQ(DeviceInfo(reinterpret_cast<Handle>(screen)), expected);
  EXPECT_NE(expected.find("; HORZRES=1"), Text::npos);  // a display of some size stands behind the tests
  ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace kiv
