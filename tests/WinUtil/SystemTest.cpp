#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "kivtools/Host.h"
#include "kivtools/WinUtil/System.h"

namespace kiv {
namespace {

using namespace literals;

TEST(SystemQueries, AnswerForThisMachine) {
  const char* const user = std::getenv("USER");
  EXPECT_TRUE(!LogOnUserName().empty());
  EXPECT_TRUE(user == nullptr || LogOnUserName() == user) << LogOnUserName();
  int major = 10;  // on Windows, where there is no such file, Wine's is above 6
  std::ifstream("/proc/sys/kernel/osrelease") >> major;
  EXPECT_EQ(EsteWindowsVista(), major >= 6) << major;
}

TEST(Clipboard, GoesThroughTheInstalledHost) {
  struct Recorder : host::Clipboard {
    void SetText(TextView text) override { last = text; }
    [[nodiscard]] Text GetText() override { return last; }
    Text last;
  };
  struct MyHost : host::Host {
    [[nodiscard]] host::Clipboard& GetClipboard() override { return recorder; }
    Recorder recorder;
  };
  {
    MyHost mine;
    host::Install(mine);
    CopiazaTextInClipboard("ţară"_ro);
    EXPECT_EQ(mine.recorder.last, "ţară"_ro);
    EXPECT_EQ(&host::Current(), &mine);
  }
  CopiazaTextInClipboard("şi fără el"_ro);  // the built-in host is back
  EXPECT_EQ(host::Current().GetClipboard().GetText(), "şi fără el"_ro);
}

}  // namespace
}  // namespace kiv
