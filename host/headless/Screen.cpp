#include "kivtools/Host/Headless.h"

namespace kiv::host::headless {
namespace {

std::int32_t Millimetres(std::int32_t pixels, std::int32_t pixelsPerInch) {
  constexpr double kMillimetresPerInch = 25.4;
  return pixelsPerInch > 0 ? static_cast<std::int32_t>(pixels * kMillimetresPerInch / pixelsPerInch) : 0;
}

}  // namespace

Screen::Screen() : monitors_(1, Monitor{{0, 0, 1920, 1080}, {0, 0, 1920, 1040}}) {}

std::int32_t Screen::Capability(Handle device, DeviceCapability capability) const {
  if (device != 0) {
    return 0;
  }
  const Rect bounds = monitors_.empty() ? Rect{} : monitors_.front().bounds;
  switch (capability) {
    case DeviceCapability::HorizontalSize:
      return Millimetres(bounds.Width(), pixelsPerInch_);
    case DeviceCapability::VerticalSize:
      return Millimetres(bounds.Height(), pixelsPerInch_);
    case DeviceCapability::HorizontalResolution:
      return bounds.Width();
    case DeviceCapability::VerticalResolution:
      return bounds.Height();
    default:
      return 0;  // a screen has no sheet
  }
}

}  // namespace kiv::host::headless
