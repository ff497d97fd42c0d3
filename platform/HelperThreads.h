#pragma once

#include <functional>

#include "core/Service.h"
#include "kivtools/Types.h"

namespace kiv::platform {

/// Threads that nobody waits for.
class HelperThreads {
 public:
  virtual ~HelperThreads() = default;

  /// Runs `work`, which must not throw, on a thread of its own. The library stays loaded until the thread has ended,
  /// whoever unloads it meanwhile. Throws OsError, with `context` and the system's code, where the system gives no
  /// thread; the work then never runs.
  virtual void Start(TextView context, std::function<void()> work) const = 0;
};

/// The system's.
const HelperThreads& SystemHelperThreads() noexcept;

/// What starts the helper threads of the library: the system, unless something else is in use.
extern constinit Service<const HelperThreads> helper_threads;

}  // namespace kiv::platform
