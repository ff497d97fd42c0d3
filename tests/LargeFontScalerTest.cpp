// The ratio is one for the whole process and its file lies beside the program: a program in a folder of its own.
#include <gtest/gtest.h>

#include "Expect.h"
#include "kivtools/Host/Headless.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/LargeFontScaler.h"
#include "platform/Program.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using host::Rect;

TEST(LargeFontScaler, ReadsTheFileBesideTheProgramOnceItHasADivisor) {
  const std::filesystem::path file = platform::ProgramFile().parent_path() / "LargeFonts.txt";
  host::headless::Host host;
  host::Install(host);
  const auto atPixelsPerInch = [&host](std::int32_t pixelsPerInch, std::int32_t value) {
    host.GetScreen().SetPixelsPerInch(pixelsPerInch);
    return IntegerScale(value);
  };
  host::headless::Label label(nullptr, "l");
  label.SetBounds({8, 16, 100, 33});
  host::headless::Panel panel(nullptr, "p");
  panel.SetBounds(Rect::At(0, 0, 100, 40));

  WriteWhole(file, "3:0");
  for (int again = 0; again < 2; ++again) {  // read each time, in case somebody mends it
    ExpectError<DivisionByZero>([] { (void)IntegerScale(1); }, "LargeFonts.txt: impartire la zero");
    ExpectError<DivisionByZero>([&] { ScaleControl(panel); }, "LargeFonts.txt: impartire la zero");
    ExpectError<DivisionByZero>([&] { ScaleControl(label); }, "LargeFonts.txt: impartire la zero");
  }
  EXPECT_EQ(panel.Bounds(), Rect::At(0, 0, 100, 40));
  EXPECT_EQ(label.Bounds(), (Rect{8, 16, 100, 33}));

  WriteWhole(file, "5:4");
  EXPECT_EQ(atPixelsPerInch(96, 100), 125);
  WriteWhole(file, "7:1");  // read once is enough
  EXPECT_EQ(atPixelsPerInch(120, 100), 156);
  EXPECT_EQ(atPixelsPerInch(120, -101), -157);  // -126.25 and -157.5 are cut
  EXPECT_EQ(atPixelsPerInch(96, 0), 0);
  EXPECT_EQ(atPixelsPerInch(96, 0x7FFFFFFF), -2);  // each product wraps
  EXPECT_EQ(atPixelsPerInch(96, 30'000'000), -7'239'242);

  // A control that can hold others is its framework's to scale, without the pixels per inch.
  host.GetScreen().SetPixelsPerInch(120);
  ScaleControl(panel);
  EXPECT_EQ(panel.Bounds(), Rect::At(0, 0, 125, 50));
  ScaleControl(label);
  EXPECT_EQ(label.Bounds(), (Rect{12, 25, 156, 51}));
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace kiv
