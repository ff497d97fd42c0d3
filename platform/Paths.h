#pragma once

#include <filesystem>
#include <string_view>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The system's own form of a Text path: on POSIX the bytes as they are, on Windows its Windows-1250 letters as wide
/// characters. Example: on Windows the byte 0xFE becomes U+0163.
std::filesystem::path PathFromText(TextView path);

/// The reverse: a path as a Text. On Windows one with letters outside the code page is taken by its short name; throws
/// OsError where it has none. Example: on Windows U+0163 becomes the byte 0xFE.
Text TextFromPath(const std::filesystem::path& path);

/// Names as the system has them: bytes on POSIX, UTF-16 units on Windows.
using NativeString = std::filesystem::path::string_type;
using NativeView = std::basic_string_view<NativeString::value_type>;

/// A path or a name to be read in a message: as Windows-1250, with "?" for letters that it lacks. On POSIX names are
/// UTF-8; one that is not is taken for Windows-1250. Example: on both systems U+0163 is shown as the byte 0xFE and
/// U+4E2D as "?".
Text ShownPath(NativeView path);

/// What stands between the names of a path: "\\" on Windows, "/" elsewhere.
inline constexpr char kPathSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

/// The path up to and with its last separator; empty where it has none. On Windows "/" separates as well, and a drive's
/// ":" ends what is no name. Example: "C:\App\x.exe" gives "C:\App\" on Windows.
TextView FolderWithSeparator(TextView path) noexcept;

/// The system's temporary folder with its trailing separator. Throws OsError where the system names none.
Text TemporaryFolder();

}  // namespace kiv::platform
