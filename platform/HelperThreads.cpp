#include "platform/HelperThreads.h"

namespace kiv::platform {

constinit Service<const HelperThreads> helper_threads(&SystemHelperThreads);

}  // namespace kiv::platform
