#pragma once

#include <cstdint>
#include <filesystem>

#include "kivtools/Types.h"

namespace kiv::large_fonts {

/// By how much forms are larger. A divisor of 0 is one that was not read yet.
struct Ratio {
  std::int32_t multiplier = 0;
  std::int32_t divisor = 0;

  friend constexpr bool operator==(const Ratio&, const Ratio&) = default;
};

/// The ratio in a line of the file. Example: " 5 : 4 px" is 5 to 4.
Ratio RatioFromLine(TextView line);

/// The ratio that follows a message font of that height. Example: -13 gives 13 to 11.
Ratio RatioFromFont(std::int32_t height);

/// The ratio from "LargeFonts.txt" in the folder, which is made there if it is missing; from the host's message font
/// where that fails. An empty path is no folder. Throws OsError for a file that cannot be read.
Ratio ReadRatio(const std::filesystem::path& folder);

}  // namespace kiv::large_fonts
