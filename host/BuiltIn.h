#pragma once

#include "kivtools/Host.h"

/// What serves where the application has installed nothing of its own.
namespace kiv::host {

/// The host over the system's own windows; null where the system has none or this process has no desktop to show them
/// on, as a Windows service. Decided once, at the first call.
Host* WindowedHost() noexcept;

/// The host in use where none is installed: the one with windows, else the one without.
Host& BuiltInHost() noexcept;

/// True on the thread that loaded the library, which is taken for the one that serves the application's windows.
bool OnLoadingThread() noexcept;

}  // namespace kiv::host
