#pragma once

#include <string>
#include <string_view>

namespace kiv::platform {

/// The folder that the text of a user-dirs.dirs file gives to a variable, empty for none. Lines read
/// `XDG_DESKTOP_DIR="$HOME/Birou"` or `="/absolute"`; a backslash makes the next letter count as it is; other lines
/// mean nothing, and of several for one variable the last counts. Separators at the end are left out.
///
///     FolderFromUserDirs("XDG_DESKTOP_DIR=\"$HOME/Birou\"\n", "XDG_DESKTOP_DIR", "/home/ana")   // "/home/ana/Birou"
std::string FolderFromUserDirs(std::string_view text, std::string_view variable, std::string_view home);

}  // namespace kiv::platform
