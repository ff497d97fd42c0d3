/// @file
/// Copying files onto diskettes and formatting these. docs/floppy.md tells what was tried how.
///
/// The drive is A:, on Windows the system's. Elsewhere a folder stands for it, which SetFloppyRoot names: a destination
/// that begins with "A:\" or "A:/" lies in that folder, so that the same calls serve on both systems.
///
/// All of it is for the application's main thread: the user is asked through the dialogs of the installed host.
#pragma once

#include <functional>

#include "kivtools/Types.h"

namespace kiv {

/// What drive A: holds.
enum stareFloppyInDrive : std::int32_t {
  nuExista = 0,          ///< no diskette
  existaNeformatat = 1,  ///< one that cannot be read: not formatted, or damaged
  existaOk = 2,          ///< one that can be read
  existaGol = 3,         ///< reserved, no operation gives it
};

/// Packs files into one archive when they do not fit a diskette. Empty until the host assigns it. Its arguments: the
/// source paths, the destination paths, and two results: the archive's destination path on the diskette and the path of
/// the archive that it has written on the local disk. Example: a host that packs nothing leaves it empty.
extern KIV_API std::function<void(const StringList&, const StringList&, Text&, Text&)> OnProcFaZipPentruDischeta;

/// What drive A: holds; the system shows no box of its own if it holds nothing. Example: nuExista without a drive.
[[nodiscard]] KIV_API stareFloppyInDrive StareFloppy();

/// A place kept in the interface; StareFloppy is what tells. Example: always false.
[[nodiscard]] KIV_API bool ExistaFloppy();

/// Copies each source to the destination at the same place of the other list, asks for the diskette and what to do with
/// files that are there already, reads every copy back and compares it with its source. The sources stay as they are,
/// and no temporary file is left.
///
/// More than 1,258,291 bytes are handed to OnProcFaZipPentruDischeta where the host has set it; its archive is copied
/// in the place of the files, without being packed again, and is then deleted whatever has happened. Without it up to
/// 1,415,577 bytes are copied as they are.
///
/// Returns quietly when the user gives up in a dialog. Throws Error: "Fisierul X nu exista!" for a source; for lists of
/// unequal length; for more than a diskette holds; for a copy that is not there or differs, which then stays on the
/// diskette with those before it; "Nu pot deschide X" for a source that cannot be opened any more or that is itself at
/// a destination, before anything there is deleted. Throws OsError for a copy that cannot be written.
///
///     CopiazaPeDischetaMulti({"C:\\date\\D100.xml", "C:\\date\\D112.xml"}, {"A:\\D100.xml", "A:\\D112.xml"});
KIV_API void CopiazaPeDischetaMulti(const StringList& sources, const StringList& destinations);

/// The same for one file. Example: `CopiazaPeDischeta("C:\\date\\D100.xml", "A:\\D100.xml")`.
KIV_API void CopiazaPeDischeta(TextView source, TextView destination);

/// Names the folder that stands for drive A: from now on; an empty text takes it away. It need not exist: StareFloppy
/// is nuExista while it does not. Throws OsError (not supported) on Windows, which has the drive itself.
/// Example: after `SetFloppyRoot("/media/floppy")` the destination "A:\\D100.xml" is "/media/floppy/D100.xml".
KIV_API void SetFloppyRoot(TextView folder);

/// Formats the diskette in drive A: in the system's own dialog, which is translated and operated for the user as far as
/// it has the texts of the English edition: the quick format is chosen and started, erasing is confirmed, and in the
/// end the boxes are closed. A dialog of another language is left to the user.
///
/// `owner` is the window that the dialog belongs to, 0 for none. Returns what the system's call returned, when the
/// dialog is closed. To be called on the thread that serves the application's windows, whose messages are served on.
/// Throws OsError where no helper thread can be started, and everywhere but on Windows (not supported).
/// Example: `FullFormatDriveA(host::Current().GetApplication().MainWindow())`.
KIV_API std::int32_t FullFormatDriveA(Handle owner);

/// The same for drive B:; the dialog's Romanian title names drive A: nevertheless. Example: `FullFormatDriveB(0)`.
KIV_API std::int32_t FullFormatDriveB(Handle owner);

}  // namespace kiv
