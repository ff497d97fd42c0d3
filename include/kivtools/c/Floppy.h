/**
 * @file
 * Copying files onto diskettes and formatting these. See kivtools/WinUtil/Floppy.h for the rules, and docs/floppy.md
 * for what was tried how. The user is asked through the dialogs of the installed host.
 */
#ifndef KIVTOOLS_C_FLOPPY_H
#define KIVTOOLS_C_FLOPPY_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What drive A: holds. */
enum {
  KIV_FLOPPY_NONE = 0,       /**< no diskette */
  KIV_FLOPPY_UNREADABLE = 1, /**< one that is not formatted, or damaged */
  KIV_FLOPPY_READY = 2,      /**< one that can be read */
  KIV_FLOPPY_EMPTY = 3       /**< reserved, never given */
};

/** What drive A: holds: KIV_FLOPPY_... Example: 0 without a drive. */
KIV_API int32_t KivStareFloppy(void);

/** A place kept in the interface. Example: always 0. */
KIV_API KivAnswer KivExistaFloppy(void);

/** Copies each source to the destination at the same place of the other list, asks for the diskette and reads every
 * copy back. Lengths are null where all texts end with a zero. KIV_OK also when the user gives up. Fails with
 * KIV_ERROR_GENERAL for files that do not exist or do not fit and for copies that differ, and with KIV_ERROR_SYSTEM
 * where one cannot be written. Example: 0. */
KIV_API KivStatus KivCopiazaPeDischetaMulti(const char* const* sources, const size_t* sourceLengths, size_t sourceCount,
                                            const char* const* destinations, const size_t* destinationLengths,
                                            size_t destinationCount);

/** The same for one file. Example: 0 for "C:\\date\\D100.xml" and "A:\\D100.xml". */
KIV_API KivStatus KivCopiazaPeDischeta(const char* source, size_t sourceLength, const char* destination,
                                       size_t destinationLength);

/** Names the folder that stands for drive A:, none for an empty text. Fails with KIV_ERROR_SYSTEM on Windows, which has
 * the drive itself. Example: 0 for "/media/floppy" on Linux. */
KIV_API KivStatus KivSetFloppyRoot(const char* folder, size_t length);

/** An archive in the making; valid until the function that packs returns. */
typedef struct KivFloppyArchive KivFloppyArchive;

/** Packs files that do not fit a diskette: the sources and their destinations, each ended by a zero, and `data` as it
 * was given. It writes an archive on the local disk and names it with KivFloppyArchiveSet; the library copies and then
 * deletes it. Returns KIV_OK, or a negative number where it has failed; what it has named is deleted then, too. */
typedef KivStatus (*KivPackForFloppy)(void* data, const char* const* sources, const char* const* destinations,
                                      size_t count, KivFloppyArchive* archive);

/** Where the archive goes on the diskette, and where it lies on the local disk. Example: 0 for "A:\\date.zip" and
 * "C:\\Temp\\date.zip". */
KIV_API KivStatus KivFloppyArchiveSet(KivFloppyArchive* archive, const char* destination, size_t destinationLength,
                                      const char* local, size_t localLength);

/** Has files packed from now on that do not fit; null packs nothing. The function stays in use until another is set.
 * Example: 0. */
KIV_API KivStatus KivSetOnProcFaZipPentruDischeta(KivPackForFloppy pack, void* data);

/** Formats the diskette in drive A: in the system's own dialog, translated and operated for the user; stores what the
 * system's call returned. `owner` is a window, 0 for none. Fails with KIV_ERROR_SYSTEM everywhere but on Windows.
 * Example: -8 on Linux. */
KIV_API KivStatus KivFullFormatDriveA(uintptr_t owner, int32_t* result);

/** The same for drive B:. Example: -8 on Linux. */
KIV_API KivStatus KivFullFormatDriveB(uintptr_t owner, int32_t* result);

#ifdef __cplusplus
}
#endif

#endif
