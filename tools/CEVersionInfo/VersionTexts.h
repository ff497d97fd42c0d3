#pragma once

#include <array>
#include <filesystem>

#include "kivtools/CEVersionInfo.h"
#include "tools/CEVersionInfo/ByteSource.h"

namespace kiv::version {

/// The key names of the strings, in the order in which they are read.
inline constexpr std::array<TextView, 10> kKeyNames = {
    "CompanyName",     "FileDescription",  "FileVersion", "InternalName",   "LegalCopyright",
    "LegalTradeMarks", "OriginalFilename", "ProductName", "ProductVersion", "Comments",
};
/// The place of the file version among them.
inline constexpr std::size_t kFileVersion = 2;

/// What a file's version resource says; all texts "<info not available>" where there is none.
struct VersionTexts {
  std::array<Text, 10> strings;
  /// Major version, minor version, release and build.
  std::array<Text, 4> parts;
  FixedFileInfo fixedInfo;
};

/// Reads the version resource of the executable file in `source`; see FindVersionResource.
VersionTexts ReadVersionTexts(ByteSource& source, std::uint16_t userLanguage);
/// The same for the file at a path in the system's own form.
VersionTexts ReadVersionTexts(const std::filesystem::path& path);

}  // namespace kiv::version
