#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv::platform {

/// The system's own text for an error code. Example on POSIX: code 2 gives "No such file or directory".
Text SystemText(std::int32_t code);

/// The error for a failed system call: `context` (the operation and the value it failed on), the system's own text and
/// the code. Example on POSIX: code 2 gives "<context>: No such file or directory".
OsError SystemError(TextView context, std::int32_t code);

/// The same for the calling thread's last system error.
OsError LastSystemError(TextView context);

}  // namespace kiv::platform
