#pragma once

#include <filesystem>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The system's own form of a Text path: on POSIX the bytes as they are, on Windows its Windows-1250 letters as wide
/// characters. Example: on Windows the byte 0xFE becomes U+0163.
std::filesystem::path PathFromText(TextView path);

/// The reverse: a path as a Text. On Windows one with letters outside the code page is taken by its short name; throws
/// OsError where it has none. Example: on Windows U+0163 becomes the byte 0xFE.
Text TextFromPath(const std::filesystem::path& path);

/// The system's temporary folder with its trailing separator. Throws OsError where the system names none.
Text TemporaryFolder();

}  // namespace kiv::platform
