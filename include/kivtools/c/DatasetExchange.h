/**
 * @file
 * Datasets in the forms of other programs. See kivtools/dataset/Csv.h, kivtools/dataset/Xml.h
 * and kivtools/dataset/Difference.h for what they do. Paths are Text.
 */
#ifndef KIVTOOLS_C_DATASETEXCHANGE_H
#define KIVTOOLS_C_DATASETEXCHANGE_H

#include "kivtools/c/DatasetPackets.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How comma-separated values are read and written; combined by |. */
enum {
  KIV_CSV_UTF8 = 1,            /**< is UTF-8; without either, a file is UTF-8 if all of it is, else Windows-1250 */
  KIV_CSV_WINDOWS1250 = 2,     /**< is Windows-1250 */
  KIV_CSV_ROMANIAN = 4,        /**< numbers are as 1.234,56 */
  KIV_CSV_MARK = 8,            /**< is written with the mark of UTF-8 in front */
  KIV_CSV_FOR_SPREADSHEET = 16 /**< texts that a spreadsheet would take for a formula are written with "'" in front */
};

/** Loads comma-separated values and stores the dataset's address. `name` is the dataset's, that of the file where it is
 * empty; `types` says what is known of columns, by their names, and may be null; `separator` is a character, 0 for what
 * stands behind the first name of the header; `csv` are KIV_CSV_.... Example: fails with KIV_ERROR_PACKET for a row
 * that has a value too many. */
KIV_API KivStatus KivDatasetLoadCsv(const char* path, size_t length, const char* name, size_t nameLength,
                                    const KivSchema* types, int32_t separator, int32_t csv, KivDataset** dataset);
/** Saves a dataset as comma-separated values. `separator` is a character, 0 for a comma; `csv` are KIV_CSV_...,
 * `options` are KIV_SAVE_.... Example: 0 for "linii.csv". */
KIV_API KivStatus KivDatasetSaveCsv(const KivDataset* dataset, const char* path, size_t length, int32_t separator,
                                    int32_t csv, int32_t options);
/** Reads comma-separated values piece by piece, as KivDatasetLoadCsv does; the dataset has the given name. Example:
 * fails with KIV_ERROR_GENERAL where the source ends the reading. */
KIV_API KivStatus KivDatasetReadCsv(KivPacketSource source, void* context, const char* name, size_t nameLength,
                                    const KivSchema* types, int32_t separator, int32_t csv, KivDataset** dataset);
/** Writes a dataset as comma-separated values, piece by piece, as KivDatasetSaveCsv does. Example: 0. */
KIV_API KivStatus KivDatasetWriteCsv(const KivDataset* dataset, int32_t separator, int32_t csv, KivPacketSink sink,
                                     void* context);

/** Loads XML and stores the dataset's address. Example: fails with KIV_ERROR_PACKET for a document type. */
KIV_API KivStatus KivDatasetLoadXml(const char* path, size_t length, KivDataset** dataset);
/** Saves a dataset as XML. `options` are KIV_SAVE_.... Example: 0 for "linii.xml". */
KIV_API KivStatus KivDatasetSaveXml(const KivDataset* dataset, const char* path, size_t length, int32_t options);
/** Reads XML piece by piece and stores the dataset's address. Example: 0. */
KIV_API KivStatus KivDatasetReadXml(KivPacketSource source, void* context, KivDataset** dataset);
/** Writes a dataset as XML, piece by piece. Example: 0. */
KIV_API KivStatus KivDatasetWriteXml(const KivDataset* dataset, KivPacketSink sink, void* context);

/** Stores the address of the delta that makes the rows of `after` of those of `before`. `keys` name the fields that
 * tell rows apart, `lengths` may be null where they are zero-terminated; without any, the key of `before` does.
 * Example: fails for two rows of one key. */
KIV_API KivStatus KivDatasetDifference(const KivDataset* before, const KivDataset* after, const char* const* keys,
                                       const size_t* lengths, size_t count, KivDelta** delta);

/** Whether this thread's last failure was KIV_ERROR_PACKET for a packet of text; if so its line, from 1, and the column
 * are stored, unless a pointer is null. Of CSV the column is that of the value, 0 for the whole row; of XML it is the
 * byte in the line. Example: 1, line 17 and column 3. */
KIV_API KivAnswer KivLastErrorLine(uint64_t* line, uint64_t* column);

#ifdef __cplusplus
}
#endif

#endif
