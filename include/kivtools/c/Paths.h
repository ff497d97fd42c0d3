/**
 * @file
 * The user's folders, temporary files, path clean-up, sizes of a device, the data source of an Access database. See
 * kivtools/WinUtil/Paths.h.
 */
#ifndef KIVTOOLS_C_PATHS_H
#define KIVTOOLS_C_PATHS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The user's documents. Fails with KIV_ERROR_SYSTEM where the system knows none. Example: "/home/ana/Documente". */
KIV_API KivLength KivGetMyDocumentsFolder(char* buffer, size_t capacity);

/** The user's desktop, as KivGetMyDocumentsFolder. Example: "C:\Users\ana\Desktop". */
KIV_API KivLength KivGetDesktopPath(char* buffer, size_t capacity);

/** What programs keep for the user, as KivGetMyDocumentsFolder. Example: "/home/ana/.config". */
KIV_API KivLength KivGetAppDataFolder(char* buffer, size_t capacity);

/** The path with every run of slashes and backslashes as one backslash. Example: "C://a/b" gives "C:\a\b". */
KIV_API KivLength KivRemoveDoubleSlash(const char* path, size_t length, char* buffer, size_t capacity);

/** The system's temporary folder with its trailing separator. Example: "/tmp/". */
KIV_API KivLength KivReadWindowsTempPath(char* buffer, size_t capacity);

/** The folder in which KivGetNewTempFileName looks. Example: "/tmp/" after KivInitialize. */
KIV_API KivLength KivTempFilePath(char* buffer, size_t capacity);

/** Names another folder for temporary files; it is not looked for. Example: 0. */
KIV_API KivStatus KivSetTempFilePath(const char* path, size_t length);

/** A path in the temporary folder that names nothing yet. Example: "/tmp/raport_1.txt" for "raport" and "txt". */
KIV_API KivLength KivGetNewTempFileName(const char* prefix, size_t prefixLength, const char* extension,
                                        size_t extensionLength, char* buffer, size_t capacity);

/** Eight sizes of a device context. Example: "HORZSIZE=320; VERTSIZE=240; ..." for a screen. */
KIV_API KivLength KivDeviceInfo(uintptr_t deviceContext, char* buffer, size_t capacity);

/**
 * The ODBC connection string for an Access database; writes the data source file that it names beside the database.
 * Asking for the length alone writes the file too. Fails with KIV_ERROR_SYSTEM where the file cannot be written.
 * Example: "Provider=MSDASQL.1;Persist Security Info=False;..." for "C:\Date\firma.mdb".
 */
KIV_API KivLength KivConnectionStringForMdb(const char* file, size_t length, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
