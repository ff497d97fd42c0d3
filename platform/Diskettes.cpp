#include "platform/Diskettes.h"

namespace kiv::platform {
namespace {

const Diskettes& SystemDiskettes() noexcept {
  static const Diskettes system;
  return system;
}

}  // namespace

constinit Service<const Diskettes> diskettes_service(&SystemDiskettes);

}  // namespace kiv::platform
