/**
 * @file
 * Folders copied and deleted with all that is in them; files copied, compared and asked about. See
 * kivtools/WinUtil/FileTrees.h for the rules.
 */
#ifndef KIVTOOLS_C_FILE_TREES_H
#define KIVTOOLS_C_FILE_TREES_H

#include "kivtools/c/Host.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Copies the files of a folder and below it whose extension is one of `count` texts (`lengths` null: all end with a
 * zero), showing each on a label of the host that KivHostInstall has installed; null shows nothing. What cannot be
 * copied is passed over, see KivWatchTrees. Fails with KIV_ERROR_CAST for a control that is no label. Example: {"*"}
 * copies all, 0. */
KIV_API KivStatus KivRecursiveCopyWithExt(const char* source, size_t sourceLength, const char* destination,
                                          size_t destinationLength, const char* const* extensions,
                                          const size_t* lengths, size_t count, KivControl* label, int32_t maxWidth);

/** The same without the files of folders whose path holds the text `skip`; "*" has no meaning here. Example: "temp". */
KIV_API KivStatus KivRecursiveCopyWithExtSkipFolders(const char* source, size_t sourceLength, const char* destination,
                                                     size_t destinationLength, const char* const* extensions,
                                                     const size_t* lengths, size_t count, KivControl* label,
                                                     const char* skip, size_t skipLength, int32_t maxWidth);

/** What a tree holds: `files` are all entries that are no folders, `folders` counts the root too, `bytes` are those of
 * the regular files. */
typedef struct KivTreeSize {
  uint64_t files;
  uint64_t folders;
  uint64_t bytes;
} KivTreeSize;

/** Counts what is in a folder and below it. Fails with KIV_ERROR_SYSTEM where its root cannot be read. Example: 0, with
 * {1, 1, 5} for a folder with one file of five bytes. */
KIV_API KivStatus KivMeasureTree(const char* root, size_t length, KivTreeSize* result);

/** Told of what the operations on file trees do, lists among them. A function that is null is not called; one that
 * returns a negative number ends the operation, which then fails with KIV_ERROR_GENERAL. `context` is their first
 * argument. See kivtools/WinUtil/TreeWatcher.h for when each is called. */
typedef struct KivTreeWatcher {
  /** sizeof(KivTreeWatcher), so that later ones may be longer. */
  size_t size;
  void* context;
  /** A file has been copied, deleted or measured. */
  KivStatus (*file)(void* context, const char* path, size_t length, uint64_t bytes);
  /** A folder has been copied, deleted or measured. */
  KivStatus (*folder)(void* context, const char* path, size_t length);
  /** Something has been passed over. The message has operation, path and the system's text; `code` is the system's. */
  KivStatus (*failure)(void* context, const char* path, size_t length, const char* message, size_t messageLength,
                       int32_t code);
} KivTreeWatcher;

/** Has the operations of this thread watched, in the place of a former watcher; null ends that, and has to be given
 * before the thread ends. The watcher is copied. Example: 0. */
KIV_API KivStatus KivWatchTrees(const KivTreeWatcher* watcher);

/** Deletes a folder with all that is in it; what cannot be deleted stays, see KivWatchTrees. Example: 0, also where
 * there is none. */
KIV_API KivStatus KivRecursiveDelete(const char* folder, size_t length);

/** Copies one file. Fails with KIV_ERROR_GENERAL ("Nu pot deschide %s") for a source that cannot be opened and with
 * KIV_ERROR_SYSTEM for a destination that cannot be written. Example: 0. */
KIV_API KivStatus KivCopyNoBuffering(const char* source, size_t sourceLength, const char* destination,
                                     size_t destinationLength);

/** Writes a file; one that had the name is replaced when the new one is whole and on the disk. Fails with
 * KIV_ERROR_SYSTEM, and the former one is as it was. Example: 0. */
KIV_API KivStatus KivSalveazaFisier(const char* file, size_t length, const char* content, size_t contentLength);

/** Whether two files have the same bytes. Fails with KIV_ERROR_SYSTEM where one cannot be read. Example: 1. */
KIV_API KivAnswer KivComparaFisiere(const char* file1, size_t length1, const char* file2, size_t length2);

/** A file's size, at most 2147483647; 0 for one that does not exist. Example: 5000. */
KIV_API KivLength KivDimensiuneFisier(const char* file, size_t length);

/** Whether a file is protected from writing; 1 also for one that does not exist. Example: 0. */
KIV_API KivAnswer KivIsFileReadOnly(const char* file, size_t length);

/** Deletes a file even if it is protected; 0 where that did not work. Example: 1. */
KIV_API KivAnswer KivForceDelete(const char* file, size_t length);

/** When a file was last written, as a local day number; -1.0 for one that does not exist. Example: 45356.5. */
KIV_API KivStatus KivFileAgeByName(const char* file, size_t length, double* result);

#ifdef __cplusplus
}
#endif

#endif
