#pragma once

#include "platform/Files.h"

namespace kiv::platform {

/// The small letter as the system compares names: every letter on Windows, "A" to "Z" on POSIX, where the rest of a
/// name is bytes. Example: 'D' gives 'd'.
SystemName::Letter LowerLetter(SystemName::Letter letter) noexcept;

/// A path with small letters. Example: "C:\DATE" gives "c:\date".
Text LowerPath(TextView path);

}  // namespace kiv::platform
