/// @file
/// Dates and times as Romanian text.
#pragma once

#include <array>

#include "kivtools/Types.h"

namespace kiv {

/// The months' names, January first: "Ianuarie" to "Decembrie". Valid from load until Finalize() releases them;
/// Initialize() fills them anew. Example: `NumeLuna[2]` is "Martie".
extern KIV_API std::array<Text, 12> NumeLuna;

/// The months' short names, January first: "ian" to "dec", November being "nov". Same life as NumeLuna.
/// Example: `NumeLunaScurt[10]` is "nov".
extern KIV_API std::array<Text, 12> NumeLunaScurt;

}  // namespace kiv
