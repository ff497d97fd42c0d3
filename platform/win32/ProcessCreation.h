#pragma once

#include "kivtools/Types.h"
#include "platform/Paths.h"

namespace kiv::platform {

/// Whether a text that goes to the system zero-terminated would be cut short there.
inline bool HasZero(TextView text) noexcept {
  return text.find('\0') != TextView::npos;
}

}  // namespace kiv::platform
