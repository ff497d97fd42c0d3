#include "host/BuiltIn.h"

namespace kiv::host {

// There is no one window system here to be built in.
Host* WindowedHost() noexcept {
  return nullptr;
}

}  // namespace kiv::host
