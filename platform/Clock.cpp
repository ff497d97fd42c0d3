#include "platform/Clock.h"

namespace kiv::platform {

constinit Service<const Clock> clock_service(&SystemClock);

}  // namespace kiv::platform
