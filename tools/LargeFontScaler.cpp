#include "kivtools/LargeFontScaler.h"

#include "core/Wrapping.h"
#include "kivtools/Host.h"
#include "platform/Program.h"
#include "tools/LargeFontScaler/Ratio.h"

namespace kiv {
namespace {

const large_fonts::Ratio& CurrentRatio() {
  static constinit large_fonts::Ratio ratio;
  if (ratio.divisor == 0) {
    ratio = large_fonts::ReadRatio(platform::ProgramFile().parent_path());
  }
  if (ratio.divisor == 0) {
    throw DivisionByZero("LargeFonts.txt: impartire la zero");
  }
  return ratio;
}

std::int32_t Scaled(std::int32_t value, const large_fonts::Ratio& ratio, std::int32_t pixelsPerInch) {
  constexpr std::int32_t kUsualPixelsPerInch = 96;
  const std::int32_t enlarged = Wrapped(std::int64_t{value} * ratio.multiplier) / ratio.divisor;
  return Wrapped(std::int64_t{enlarged} * pixelsPerInch) / kUsualPixelsPerInch;
}

}  // namespace

std::int32_t IntegerScale(std::int32_t value) {
  const large_fonts::Ratio& ratio = CurrentRatio();
  return Scaled(value, ratio, host::Current().GetScreen().PixelsPerInch());
}

void ScaleControl(host::Control& control) {
  const large_fonts::Ratio& ratio = CurrentRatio();
  if (control.IsContainer()) {
    control.ScaleBy(ratio.multiplier, ratio.divisor);
    return;
  }
  const std::int32_t pixelsPerInch = host::Current().GetScreen().PixelsPerInch();
  const auto scaled = [&](std::int32_t value) { return Scaled(value, ratio, pixelsPerInch); };
  const host::Rect bounds = control.Bounds();
  control.SetBounds({scaled(bounds.left), scaled(bounds.top), scaled(bounds.right), scaled(bounds.bottom)});
}

}  // namespace kiv
