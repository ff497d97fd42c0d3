#pragma once

#include <filesystem>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The system's own form of a Text path: on POSIX the bytes as they are, on Windows its Windows-1250 letters as wide
/// characters. Example: on Windows the byte 0xFE becomes U+0163.
std::filesystem::path PathFromText(TextView path);

/// The system's temporary folder with its trailing separator. Throws OsError where the system names none.
Text TemporaryFolder();

}  // namespace kiv::platform
