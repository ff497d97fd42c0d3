#pragma once

#include "kivtools/Types.h"

namespace kiv::store {

/// A random identifier of version 4. Throws std::exception where the system has no randomness to give.
Guid RandomGuid();

}  // namespace kiv::store
