#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The name of the user whom this process acts for, empty where the system has none; letters that Windows-1250 lacks
/// are "?". Example: "ana".
Text UserName();

/// The operating system's major version number: on Windows its own (6 for Vista to 8.1), on POSIX the kernel's.
/// Example: 6 for Linux 6.1.
std::int32_t MajorVersion();

/// The user's language as the system numbers languages: the low ten bits are the language, the others its region.
/// Where only the language is known the region is 1; where nothing is known the result is 0. Example: 0x0418, Romanian.
std::uint16_t UserLanguage();

}  // namespace kiv::platform
