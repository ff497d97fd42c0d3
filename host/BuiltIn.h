#pragma once

#include "kivtools/Host.h"

/// What serves where the application has installed nothing of its own; the build picks host/headless/ or host/win32/.
namespace kiv::host {

Clipboard& BuiltInClipboard();

}  // namespace kiv::host
