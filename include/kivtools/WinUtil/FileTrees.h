/// @file
/// Folders copied and deleted with all that is in them; files copied, compared and asked about.
///
/// Paths are Windows-1250 on Windows and the system's own bytes elsewhere; the separator is the system's, "\" on
/// Windows and "/" elsewhere. Names below a given folder stay the system's own, whatever letters they have. A link, on
/// Windows also a junction, is an entry by itself: it is copied or deleted, and nobody goes where it leads.
///
/// What shows a progress label is for the application's main thread; the rest may be called from any thread.
#pragma once

#include "kivtools/Host.h"
#include "kivtools/Types.h"

namespace kiv {

/// Copies the files of a folder and of those below it whose extension is one of `extensions`, and all the folders.
/// Missing folders of `destination` are made; former files are replaced.
///
/// An extension is what follows the last dot of a name, with small letters; entries are compared with it as they are,
/// so "dbf" takes "A.DBF" and "DBF" takes nothing. "*" takes every file, an empty entry those without a dot.
///
/// Before each file its path is shown on the label, shortened to at most `maxWidth` pixels: the last folders and the
/// name behind "...\", or the end of the name behind "...". Files of sub-folders are fitted to 350 pixels whatever the
/// argument. At the start of each folder the application's waiting messages are served, when this is its main thread.
///
/// No failure is reported, except to a TreeWatcher: what cannot be read or written is passed over. A former file is
/// there, whole, until its copy is, and a copy that fails leaves nothing behind. Copies have the times and attributes
/// of their files. Pipes, sockets and devices are not copied, nor are files onto themselves. A destination within the
/// source is not copied into itself. An empty source or destination copies nothing.
///
///     RecursiveCopyWithExt("C:\\date", "D:\\salvare", {"dbf", "mdb"}, label, 350);
KIV_API void RecursiveCopyWithExt(TextView source, TextView destination, const StringList& extensions,
                                  host::Label& label, std::int32_t maxWidth);

/// The same without the files of folders whose path holds a text: `skip`, without surrounding blanks and with small
/// letters, is looked for in the folder's path, source included, with small letters and a separator at its end. Their
/// folders are made nevertheless. An empty text skips nothing. "*" is no more than an extension here.
///
///     RecursiveCopyWithExtSkipFolders("C:\\date", "D:\\salvare", {"dbf"}, label, "\\arhiva\\", 350);
KIV_API void RecursiveCopyWithExtSkipFolders(TextView source, TextView destination, const StringList& extensions,
                                             host::Label& label, TextView skip, std::int32_t maxWidth);

/// Deletes a folder with all that is in it, hidden and protected files too. What cannot be deleted stays, and so do the
/// folders that it is in; nothing is reported, except to a TreeWatcher. A link to a folder is deleted, not what it
/// leads to. Nothing is deleted for an empty path, a root folder and the root of a drive. Example:
/// `RecursiveDelete("C:\\temp\\lucru")`.
KIV_API void RecursiveDelete(TextView folder);

/// What a tree holds.
struct TreeSize {
  std::uint64_t files = 0;    ///< all that is no folder, links and pipes too
  std::uint64_t folders = 0;  ///< the tree's root among them
  std::uint64_t bytes = 0;    ///< in the regular files; each name of a file with several counts
};

/// Counts what is in a folder and below it: what RecursiveDelete would delete. A root that is a file or a link counts
/// as one file. Throws OsError for a root that cannot be asked about or read; what else cannot be read is told to a
/// TreeWatcher and counts no further. Example: a folder with one file of 5 bytes is {1, 1, 5}.
[[nodiscard]] KIV_API TreeSize MeasureTree(TextView root);

/// Copies one file, with each byte that was asked for counted. The source must not be in use by others (on POSIX: not
/// locked by them). A former destination is replaced when the copy is whole; a new one that could not be finished
/// stays.
///
/// Throws Error: "Nu pot deschide %s" with the source, for one that cannot be opened, is no regular file or is the
/// destination itself; "Am incercat sa citesc %d bytes; Am reusit sa citesc numai
/// %d bytes" for a source that became shorter meanwhile, counted in blocks of 2,048 bytes; "VirtualAlloc a esuat" for
/// want of memory. Throws OsError with operation and path where the destination cannot be written.
///
///     CopyNoBuffering("C:\\date\\firme.dbf", "A:\\firme.dbf");
KIV_API void CopyNoBuffering(TextView source, TextView destination);

/// Writes a file. What has the name is, whatever fails and wherever the program stops, the former file or the whole new
/// one, which is on the disk when this returns; one that is protected from writing stays. Throws OsError with operation
/// and path.
///
///     SalveazaFisier("C:\\facturi\\117.html", "<!DOCTYPE html>...");
KIV_API void SalveazaFisier(TextView file, TextView content);

/// Whether two files have the same size and the same bytes. Throws OsError with operation and path for one that cannot
/// be opened or read. Example: two empty files are equal.
[[nodiscard]] KIV_API bool ComparaFisiere(TextView file1, TextView file2);

/// The file's size in bytes; 2147483647 for 2 GiB and more, 0 for a folder and for what does not exist.
/// Example: `DimensiuneFisier("C:\\missing.txt")` is 0.
[[nodiscard]] KIV_API std::int32_t DimensiuneFisier(TextView file);

/// Whether the file is protected from writing: on Windows by its attribute, on POSIX when nobody may write it. True for
/// what does not exist or cannot be asked. Example: `IsFileReadOnly("C:\\missing.txt")` is true.
[[nodiscard]] KIV_API bool IsFileReadOnly(TextView file);

/// Deletes a file or a link even if it is protected from writing; returns whether it is deleted. Folders are not.
/// Example: `ForceDelete("C:\\missing.txt")` is false.
KIV_API bool ForceDelete(TextView file);

/// When the file was last written, by the local time; -1.0 for a folder and for what does not exist. Throws
/// DateEncodingError for a time outside the years 1 to 9999.
/// Example: `FileAgeByName("C:\\missing.txt").Days()` is -1.0.
[[nodiscard]] KIV_API DateTime FileAgeByName(TextView file);

}  // namespace kiv
