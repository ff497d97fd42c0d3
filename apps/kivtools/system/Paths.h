#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kivtools {

/// Names are UTF-8 in this program; on POSIX bytes that are no UTF-8 pass as they are.
std::filesystem::path PathFromUtf8(std::string_view name);
std::string Utf8FromPath(const std::filesystem::path& path);

/// The path as the library's functions take it: the bytes on POSIX; Windows-1250 on Windows, by its short name where
/// the code page lacks a letter. Throws InputError, naming the path, where it has no such name.
std::string LibraryPath(const std::filesystem::path& path);

/// Whether a path that the library gives is to be shown as it is: on POSIX it is bytes, and those are UTF-8 for a
/// reader; on Windows it is Windows-1250.
bool LibraryPathsAreUtf8() noexcept;

/// The name with small letters, as the library makes them when it compares names: ASCII ones on POSIX, all on Windows.
std::string LowerName(std::string_view name);

/// Where the user's own files are, by the environment and by the system's own record of users.
std::vector<std::filesystem::path> HomeFolders();

}  // namespace kivtools
