/// @file
/// The unit CEVersionInfo: version resources of executable files.
#pragma once

#include <array>

#include "kivtools/Types.h"

namespace kiv {

/// The key names of a version resource's strings, in the order in which they are read. Valid from load until
/// Finalize() releases them; Initialize() fills them anew. Example: `InfoStr[0]` is "CompanyName".
extern KIV_API std::array<Text, 10> InfoStr;

}  // namespace kiv
