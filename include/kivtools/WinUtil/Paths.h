/// @file
/// Paths and temporary files.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// The folder for temporary files, with its trailing separator. Empty until Initialize() sets it from
/// ReadWindowsTempPath() and again after Finalize(); it is never refreshed between. A host may assign another folder.
/// Example on Linux: "/tmp/".
extern KIV_API Text TempFilePath;

/// The system's temporary folder with its trailing separator: "\" on Windows, "/" elsewhere. Throws OsError where the
/// system names none. Example on Linux without TMPDIR: "/tmp/".
[[nodiscard]] KIV_API Text ReadWindowsTempPath();

}  // namespace kiv
