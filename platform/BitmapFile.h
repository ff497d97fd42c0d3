#pragma once

#include <filesystem>

#include "core/BitmapFile.h"

namespace kiv::platform {

/// Writes a .bmp file; what had the name is replaced as a whole. Throws OsError and Error, which name `operation` and
/// the path.
void SaveBitmap(const bmpfile::Picture& picture, const std::filesystem::path& path, TextView operation);

/// Reads a .bmp file. Throws OsError and Error, which name `operation` and the path.
Bitmap LoadBitmap(const std::filesystem::path& path, TextView operation);

}  // namespace kiv::platform
