#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "tools/CEVersionInfo/ByteSource.h"

namespace kiv::version {

/// The most bytes that are read of a file, and of one that turns out to have no version resource.
inline constexpr std::size_t kMostBytesRead = 65'536;
inline constexpr std::size_t kMostBytesReadInVain = 4'096;

/// The version resource of an executable file (32 or 64 bits wide, or a 16-bit one) as its bytes are in the file,
/// nothing where the file is no executable, has no such resource, or is damaged, however badly. Only the headers and
/// the resource itself are read.
///
/// Only the resource numbered 1 counts, as with the system's own reader. Of several languages the neutral one is taken,
/// then the user's (`userLanguage` in the system's numbering, 0 if unknown), then English, then the file's first.
std::optional<std::vector<std::uint8_t>> FindVersionResource(ByteSource& source, std::uint16_t userLanguage);

}  // namespace kiv::version
