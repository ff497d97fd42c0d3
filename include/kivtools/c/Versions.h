/**
 * @file
 * Version numbers as dotted text, and the version resources of executable files. File names are paths: Windows-1250 on
 * Windows, bytes elsewhere.
 */
#ifndef KIVTOOLS_C_VERSIONS_H
#define KIVTOOLS_C_VERSIONS_H

#include "kivtools/c/StringList.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The texts that KivVersionInfo gives, by their index. */
enum {
  KIV_VERSION_COMPANY_NAME = 0,
  KIV_VERSION_FILE_DESCRIPTION = 1,
  KIV_VERSION_FILE_VERSION = 2,
  KIV_VERSION_INTERNAL_NAME = 3,
  KIV_VERSION_LEGAL_COPYRIGHT = 4,
  KIV_VERSION_LEGAL_TRADE_MARKS = 5,
  KIV_VERSION_ORIGINAL_FILENAME = 6,
  KIV_VERSION_PRODUCT_NAME = 7,
  KIV_VERSION_PRODUCT_VERSION = 8,
  KIV_VERSION_COMMENTS = 9,
  KIV_VERSION_MAJOR_VERSION = 10, /**< the four parts of the file version */
  KIV_VERSION_MINOR_VERSION = 11,
  KIV_VERSION_RELEASE = 12,
  KIV_VERSION_BUILD = 13,
  KIV_VERSION_FIELDS = 14 /**< how many there are */
};

/** The fixed-information block of a version resource: 13 numbers as they are in the file, the signature first. */
typedef struct KivFixedFileInfo {
  uint32_t numbers[13];
} KivFixedFileInfo;

/**
 * Whether the text is a version of at most four parts, which are written: those read before the offending character if
 * it is none. Example: "7.1" gives 1 with 7, 1, 0, 0.
 */
KIV_API KivAnswer KivAnalizeazaNrVersiune(int32_t* major, int32_t* minor, int32_t* release, int32_t* build,
                                          const char* version, size_t length);

/** Whether the text is a version. Example: "1.2.3." is, "1.2.3.4." is not. */
KIV_API KivAnswer KivNumarulDeVersiuneEsteValid(const char* version, size_t length);

/**
 * The difference of the first parts that differ; below 0 if a is the older. Fails with KIV_ERROR_GENERAL for a text
 * that is no version. Example: "1.10" and "1.9" give 1.
 */
KIV_API KivStatus KivCompareNrVersiune(const char* a, size_t aLength, const char* b, size_t bLength,
                                       int32_t* difference);

/** The file version of an executable file. Example: "5.12.0.341", or "<info not available>". */
KIV_API KivLength KivGetFileVersionKiv(const char* fileName, size_t length, char* buffer, size_t capacity);

/** The four parts of a file's version joined by dots. Example: "5.12.0.341". */
KIV_API KivLength KivNamedFileVersionInfo(const char* fileName, size_t length, char* buffer, size_t capacity);

/** The same for the running program. Example: "5.12.0.341". */
KIV_API KivLength KivThisExeVersionInfo(char* buffer, size_t capacity);

/**
 * Replaces the list's content by the fourteen texts of a file's version resource; each is "<info not available>" where
 * the file has none, which is no failure. fixedInfo may be null. Example: index KIV_VERSION_MAJOR_VERSION gives "5".
 */
KIV_API KivStatus KivVersionInfo(const char* fileName, size_t length, KivStringList* fields,
                                 KivFixedFileInfo* fixedInfo);

/** The name of a text of KivVersionInfo. Example: index 3 gives "InternalName". */
KIV_API KivLength KivVersionFieldName(int32_t field, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
