#include "platform/WindowSystem.h"

namespace kiv::platform {
namespace {

const WindowSystem& SystemWindows() noexcept {
  static const WindowSystem system;
  return system;
}

}  // namespace

constinit Service<const WindowSystem> window_system_service(&SystemWindows);

}  // namespace kiv::platform
