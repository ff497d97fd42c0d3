#pragma once

#include <filesystem>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The user's own folders, by their numbers on Windows.
enum class SpecialFolder : std::int32_t { Desktop = 0, Documents = 5, ApplicationData = 26 };

/// Where the user has the folder, without a separator at its end. `operation` is what an error names.
///
/// On Windows the shell tells. On POSIX the documents and the desktop are what the file user-dirs.dirs in the user's
/// configuration folder says, else the environment variable of that name (XDG_DOCUMENTS_DIR, XDG_DESKTOP_DIR), else
/// the home folder and "Desktop" in it; application data is the configuration folder itself: XDG_CONFIG_HOME, else
/// ".config" in the home folder. Paths that are not absolute do not count. Throws OsError where the shell refuses,
/// where the user has no home folder, or the file is there and cannot be read.
std::filesystem::path PathOfSpecialFolder(SpecialFolder folder, TextView operation);

}  // namespace kiv::platform
