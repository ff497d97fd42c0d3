/// @file
/// Questions to the system and to the host.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// The user's name: on Windows that of the current logon, on POSIX that of the process's effective user in the password
/// database. Empty where the system has none; letters that Windows-1250 lacks are "?". Example: "ana".
[[nodiscard]] KIV_API Text LogOnUserName();

/// Whether the operating system's major version number is 6 or more: on Windows true from Vista on; on POSIX it is the
/// kernel's number that counts. Example: true on Windows 10 and on Linux 6.1.
[[nodiscard]] KIV_API bool EsteWindowsVista();

/// Puts a text on the clipboard of the installed host, replacing its content. On Windows that is the system's
/// clipboard; without a window system the text stays in the process. Throws OsError where the clipboard cannot be
/// opened.
///
///     CopiazaTextInClipboard("ţară"_ro);   // other programs can paste "ţară"
KIV_API void CopiazaTextInClipboard(TextView text);

}  // namespace kiv
