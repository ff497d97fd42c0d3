#pragma once

#include <filesystem>

namespace kiv::platform {

/// The running program's own file, in the system's own form; empty where the system does not tell.
/// Example on Linux: "/usr/bin/kivtools".
std::filesystem::path ProgramFile();

}  // namespace kiv::platform
