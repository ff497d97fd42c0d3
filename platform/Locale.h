#pragma once

#include <optional>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The time of day in the user's long time format, as Windows-1250; nothing where the system has no such format or its
/// letters are outside the code page. Example: "14:07:09" on a Romanian desktop, "2:07:09 PM" on an American one.
std::optional<Text> TimeInUserFormat(int hour, int minute, int second);

}  // namespace kiv::platform
