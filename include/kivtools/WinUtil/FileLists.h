/// @file
/// Lists of the files of a folder and of those below it.
///
/// Paths are Windows-1250 on Windows and the system's own bytes elsewhere; the separator is the system's, "\" on
/// Windows and "/" elsewhere. Everything here may be called from any thread.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// The paths of all files in a folder and in those below it whose extension is one of `extensions`, in the order in
/// which the file system gives them, each sub-folder's files at the place where the sub-folder was met.
///
/// An extension is what follows the last dot of a name, written without the dot, in any case of letters: "dbf" takes
/// "A.DBF". "*" takes every file, an empty one those without an extension. Hidden files are listed like others, and so
/// is all that is no folder: links, which are not followed, pipes, sockets and devices.
///
/// Each path is `root` as it was given, a separator if it does not end in one, and the names below it. On Windows a
/// name with letters that Windows-1250 lacks stands there as its short name, and where it has none with "?" for each
/// such letter. A root that is a link is followed. An empty root gives an empty list. Folders that are missing or
/// cannot be read contribute nothing; no error is raised for them, but a TreeWatcher is told. No depth of folders and
/// no length of a path is too much.
///
///     InitFileList("C:\\date", {"dbf"});   // {"C:\date\firme.dbf", "C:\date\2024\Facturi.DBF"}
[[nodiscard]] KIV_API StringList InitFileList(TextView root, const StringList& extensions);

/// The same for folders no deeper than `maxDepth`: 0 is the root alone, 1 also the folders in it, and so on; a negative
/// depth gives an empty list.
///
///     InitFileListMaxDepth("C:\\date", {"dbf"}, 0);   // {"C:\date\firme.dbf"}
[[nodiscard]] KIV_API StringList InitFileListMaxDepth(TextView root, const StringList& extensions,
                                                      std::int32_t maxDepth);

}  // namespace kiv
