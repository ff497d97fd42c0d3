#pragma once

#include "platform/Files.h"

/// Copies of single entries of folders, by the fastest means that the system has.
namespace kiv::platform {

/// Copies a regular file to a name that nothing has yet, with its times and its attributes (on POSIX its permissions;
/// the copy is the process's own) where the file system keeps such. Holes stay holes. After a failure nothing has the
/// new name.
SystemStatus CopyNewFile(const Folder& from, SystemName name, const Folder& to, SystemName newName);

/// Makes a link under a name that nothing has yet which leads where another one does.
SystemStatus CopyNewLink(const Folder& from, SystemName name, const Folder& to, SystemName newName);

/// Copies a file or a link, as `kind` says, to a name that something may have: a former file or link is there, whole,
/// until the copy is. Pipes, sockets and devices are refused unopened, and so is a destination that is one, is a folder
/// or is protected from writing. What leads to one and the same file stays as it is. Where the folder does not let a
/// file be made beside the former one, that one is overwritten.
SystemStatus CopyEntry(const Folder& from, SystemName name, EntryKind kind, const Folder& to, SystemName newName);

}  // namespace kiv::platform
