#pragma once

#include <filesystem>

#include "platform/Files.h"

namespace kiv::platform {

/// Makes a folder with those above it that are missing; one that is there already is as good. An empty path names
/// nothing that could be missing.
SystemStatus MakeFolders(const std::filesystem::path& path);

}  // namespace kiv::platform
