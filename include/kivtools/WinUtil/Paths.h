/// @file
/// The user's folders, temporary files, path clean-up, sizes of a device, and the data source of an Access database.
///
/// A path is Windows-1250 on Windows and the system's own bytes on POSIX; the separator is "\" there and "/" here
/// wherever real files are meant.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// The folder for temporary files, with its trailing separator. Empty until Initialize() sets it from
/// ReadWindowsTempPath() and again after Finalize(); it is never refreshed between. A host may assign another folder.
/// Example on Linux: "/tmp/".
extern KIV_API Text TempFilePath;

/// The system's temporary folder with its trailing separator: "\" on Windows, "/" elsewhere. Throws OsError where the
/// system names none. Example on Linux without TMPDIR: "/tmp/".
[[nodiscard]] KIV_API Text ReadWindowsTempPath();

/// The full path of a temporary file that does not exist yet: TempFilePath, a separator, the prefix, "_", a counter
/// from 1 up, "." and the extension (given without its dot; an empty one leaves the dot). Nothing is created: two
/// callers at the same moment may get the same name. A separator at the end of TempFilePath is taken off the variable
/// itself. Throws nothing but for memory.
///
///     TempFilePath = "C:\\Temp\\";              // holds raport_1.txt already
///     GetNewTempFileName("raport", "txt")        // C:\Temp\raport_2.txt; TempFilePath is C:\Temp now
[[nodiscard]] KIV_API Text GetNewTempFileName(TextView prefix, TextView extension);

/// The user's folder for documents, without a separator at its end. On Windows the shell tells; on POSIX the desktop's
/// convention counts: the file user-dirs.dirs, then the variable XDG_DOCUMENTS_DIR, then the home folder. Throws
/// OsError where the system knows none. Example on Linux: "/home/ana/Documente".
[[nodiscard]] KIV_API Text GetMyDocumentsFolder();

/// The folder of the user's desktop, as GetMyDocumentsFolder (XDG_DESKTOP_DIR, then "Desktop" in the home folder).
/// Example on Windows: "C:\Users\ana\Desktop".
[[nodiscard]] KIV_API Text GetDesktopPath();

/// The folder for what programs keep for the user on every machine, without a separator at its end: on Windows the
/// roaming application data, on POSIX XDG_CONFIG_HOME, else ".config" in the home folder. Throws like the other two.
/// Example on Windows: "C:\Users\ana\AppData\Roaming".
[[nodiscard]] KIV_API Text GetAppDataFolder();

/// The path with "/" turned into "\" and every run of backslashes shrunk to one; a leading pair that marks a network
/// path is set aside and put back. It cleans text: backslashes are meant on every system. Pure.
///
///     RemoveDoubleSlash("C://a\\\\b/c")   // C:\a\b\c
[[nodiscard]] KIV_API Text RemoveDoubleSlash(TextView path);

/// Eight sizes of a device context as "NAME=value" joined by "; ": width and height in millimetres and in pixels, then
/// a printer's sheet and margins in device units. On Windows the system tells; elsewhere the installed host's screen. A
/// device that is none gives zeros.
///
///     DeviceInfo(screen)
///     // HORZSIZE=320; VERTSIZE=240; HORZRES=1024; VERTRES=768; PHYSICALWIDTH=0; PHYSICALHEIGHT=0;
///     // PHYSICALOFFSETX=0; PHYSICALOFFSETY=0      (on one line)
[[nodiscard]] KIV_API Text DeviceInfo(Handle deviceContext);

/// The connection string for an Access database through ODBC. Also writes the file data source "auto_dsn.dsn" that it
/// names into the database's folder, which is made where it is missing; a former file is replaced as a whole. No
/// connection is opened and the database need not exist. Throws OsError where the folder cannot be made or the file
/// cannot be written, Error for a path with a line break or a zero in it.
///
///     ConnectionStringForMdb("C:\\Date\\firma.mdb")
///     // Provider=MSDASQL.1;Persist Security Info=False;
///     // Extended Properties="DBQ=C:\Date\firma.mdb;DefaultDir=C:\Date;...      (on one line)
[[nodiscard]] KIV_API Text ConnectionStringForMdb(TextView file);

}  // namespace kiv
