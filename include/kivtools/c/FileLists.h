/**
 * @file
 * Lists of the files of a folder and of those below it. See kivtools/WinUtil/FileLists.h for the rules.
 */
#ifndef KIVTOOLS_C_FILE_LISTS_H
#define KIVTOOLS_C_FILE_LISTS_H

#include "kivtools/c/Base.h"
#include "kivtools/c/StringList.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Appends to `list` the paths of all files in a folder and below it whose extension is one of `count` texts; `lengths`
 * null says that all end with a zero. Nothing is appended after a failure. Example: with {"dbf"} "/date/a.DBF". */
KIV_API KivStatus KivInitFileList(const char* root, size_t length, const char* const* extensions, const size_t* lengths,
                                  size_t count, KivStringList* list);

/** The same for folders no deeper than `maxDepth`; 0 is the root alone. Example: "/date/a.DBF", not "/date/2024/b.dbf".
 */
KIV_API KivStatus KivInitFileListMaxDepth(const char* root, size_t length, const char* const* extensions,
                                          const size_t* lengths, size_t count, int32_t maxDepth, KivStringList* list);

#ifdef __cplusplus
}
#endif

#endif
