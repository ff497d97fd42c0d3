/**
 * @file
 * Datasets: typed rows in memory, with keys, change log, marks, roll-back and the net of all changes. See
 * kivtools/dataset/Dataset.h for what they do.
 *
 * A field is named by its place in the schema, which KivDatasetField finds. A row is open for editing from its first
 * KivDatasetSet... or from KivDatasetInsert until KivDatasetPost or KivDatasetCancel; one row of a dataset at a time.
 * Values of an open row are seen by nobody before it is posted. A handle is used from one thread at a time.
 */
#ifndef KIVTOOLS_C_DATASET_H
#define KIVTOOLS_C_DATASET_H

#include "kivtools/c/Base.h"
#include "kivtools/c/TextShaping.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The fields of a dataset that is to be made. */
typedef struct KivSchema KivSchema;
/** A dataset. */
typedef struct KivDataset KivDataset;
/** The net of a dataset's changes. */
typedef struct KivDelta KivDelta;

/** The types of a field. */
enum {
  KIV_FIELD_INT16 = 0,
  KIV_FIELD_INT32 = 1,
  KIV_FIELD_INT64 = 2,
  KIV_FIELD_CURRENCY = 3,
  KIV_FIELD_DOUBLE = 4,
  KIV_FIELD_DATE = 5,
  KIV_FIELD_TIME = 6,
  KIV_FIELD_DATE_TIME = 7,
  KIV_FIELD_TEXT = 8,
  KIV_FIELD_WIDE_TEXT = 9,
  KIV_FIELD_BOOLEAN = 10,
  KIV_FIELD_GUID = 11,
  KIV_FIELD_MEMO = 12,
  KIV_FIELD_BLOB = 13,
  KIV_FIELD_AUTO_INC = 14
};

/** What a field demands; combined by |. */
enum {
  KIV_FLAG_KEY = 1,       /**< part of the unique key */
  KIV_FLAG_REQUIRED = 2,  /**< never null */
  KIV_FLAG_READ_ONLY = 4, /**< set when its row is inserted, never by an update */
  KIV_FLAG_CHECK = 8,     /**< takes part in the detection of conflicts; Memo and Blob only so */
  KIV_FLAG_NO_CHECK = 16  /**< takes no part in it */
};

/** The states of a row. */
enum { KIV_ROW_UNMODIFIED = 0, KIV_ROW_INSERTED = 1, KIV_ROW_MODIFIED = 2, KIV_ROW_DELETED = 3 };

/** What a change did to its row. */
enum { KIV_CHANGE_INSERT = 0, KIV_CHANGE_UPDATE = 1, KIV_CHANGE_DELETE = 2 };

/** Stands for the row that KivDatasetInsert has opened, and for the place before the first row. */
#define KIV_NO_ROW 0xFFFFFFFFu

/** Makes an empty list of fields. Free it with KivSchemaFree. Null where there is no memory. */
KIV_API KivSchema* KivSchemaNew(void);
/** Frees a list of fields; null is ignored. Example: KivSchemaFree(schema); */
KIV_API void KivSchemaFree(KivSchema* schema);
/** Adds a field. Example: 0 for `KivSchemaAddField(schema, "suma", KIV_ZERO_ENDED, KIV_FIELD_CURRENCY, 0, 0)`. */
KIV_API KivStatus KivSchemaAddField(KivSchema* schema, const char* name, size_t length, int32_t type, int32_t size,
                                    int32_t flags);

/** Makes an empty dataset and stores its address. Example: fails for a schema without fields. */
KIV_API KivStatus KivDatasetNew(const char* name, size_t length, const KivSchema* schema, KivDataset** dataset);
/** Frees a dataset; null is ignored. Example: KivDatasetFree(dataset); */
KIV_API void KivDatasetFree(KivDataset* dataset);
/** The place of the field of that name, case apart. Example: 1 for "SUMA". */
KIV_API KivLength KivDatasetField(const KivDataset* dataset, const char* name, size_t length);
/** How many rows there are, deleted ones not counted. Example: 2. */
KIV_API KivLength KivDatasetRowCount(const KivDataset* dataset);
/** Whether there is a row after `row`, deleted ones left out; if so it is stored. Example: 1 and row 0 for KIV_NO_ROW.
 */
KIV_API KivAnswer KivDatasetNextRow(const KivDataset* dataset, uint32_t row, uint32_t* next);
/** Stores the row's state. Example: KIV_ROW_INSERTED. */
KIV_API KivStatus KivDatasetState(const KivDataset* dataset, uint32_t row, int32_t* state);
/** Whether there is a row with that key of one integer field; if so it is stored. Example: 1 for a key that is there.
 */
KIV_API KivAnswer KivDatasetFindInt64(const KivDataset* dataset, int64_t key, uint32_t* row);
/** The same for a key of one Text field. Example: 0 for a key that is not there. */
KIV_API KivAnswer KivDatasetFindText(const KivDataset* dataset, const char* key, size_t length, uint32_t* row);

/** Opens a new row, which is called KIV_NO_ROW until it is posted. Example: 0. */
KIV_API KivStatus KivDatasetInsert(KivDataset* dataset);
/** Sets a field of the open row, or opens the row: to null. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetNull(KivDataset* dataset, uint32_t row, size_t field);
/** Sets a field of the open row, or opens the row: Boolean. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetBoolean(KivDataset* dataset, uint32_t row, size_t field, int32_t value);
/** Sets a field of the open row, or opens the row: Int16, Int32, Int64 or AutoInc. Example: 0; what the field cannot
 * hold is told by KivDatasetPost. */
KIV_API KivStatus KivDatasetSetInt64(KivDataset* dataset, uint32_t row, size_t field, int64_t value);
/** Sets a field of the open row, or opens the row: Double. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetDouble(KivDataset* dataset, uint32_t row, size_t field, double value);
/** Sets a field of the open row, or opens the row: Currency, in ten-thousandths. Example: 0; what the field cannot hold
 * is told by KivDatasetPost. */
KIV_API KivStatus KivDatasetSetCurrency(KivDataset* dataset, uint32_t row, size_t field, int64_t value);
/** Sets a field of the open row, or opens the row: Date, Time or DateTime, in days since 30 December 1899. Example: 0;
 * what the field cannot hold is told by KivDatasetPost. */
KIV_API KivStatus KivDatasetSetDateTime(KivDataset* dataset, uint32_t row, size_t field, double days);
/** Sets a field of the open row, or opens the row: Text or Memo. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetText(KivDataset* dataset, uint32_t row, size_t field, const char* text, size_t length);
/** Sets a field of the open row, or opens the row: WideText, in UTF-16 units. Example: 0; what the field cannot hold is
 * told by KivDatasetPost. */
KIV_API KivStatus KivDatasetSetWideText(KivDataset* dataset, uint32_t row, size_t field, const uint16_t* text,
                                        size_t length);
/** Sets a field of the open row, or opens the row: Guid. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetGuid(KivDataset* dataset, uint32_t row, size_t field, const KivGuid* value);
/** Sets a field of the open row, or opens the row: Blob. Example: 0; what the field cannot hold is told by
 * KivDatasetPost. */
KIV_API KivStatus KivDatasetSetBytes(KivDataset* dataset, uint32_t row, size_t field, const uint8_t* bytes,
                                     size_t size);
/** Posts the open row, all of it or nothing, and stores its number unless `posted` is null. A row that is refused stays
 * open. Example: 0, and the number of a new row. */
KIV_API KivStatus KivDatasetPost(KivDataset* dataset, uint32_t* posted);
/** Forgets what was set in the open row; nothing is open afterwards. Example: 0. */
KIV_API KivStatus KivDatasetCancel(KivDataset* dataset);
/** Deletes a row. Example: 0. */
KIV_API KivStatus KivDatasetDelete(KivDataset* dataset, uint32_t row);

/** Whether the value is null. Example: 1. */
KIV_API KivAnswer KivDatasetIsNull(const KivDataset* dataset, uint32_t row, size_t field);
/** Stores the value of a Boolean; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetBoolean(const KivDataset* dataset, uint32_t row, size_t field, int32_t* value);
/** Stores the value of a Int16, Int32, Int64 or AutoInc; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetInt64(const KivDataset* dataset, uint32_t row, size_t field, int64_t* value);
/** Stores the value of a Double; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetDouble(const KivDataset* dataset, uint32_t row, size_t field, double* value);
/** Stores the value of a Currency, in ten-thousandths; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetCurrency(const KivDataset* dataset, uint32_t row, size_t field, int64_t* value);
/** Stores the value of a Date, Time or DateTime, in days; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetDateTime(const KivDataset* dataset, uint32_t row, size_t field, double* value);
/** Stores the value of a Guid; 0 for null, where nothing is stored. Example: 1. */
KIV_API KivAnswer KivDatasetGetGuid(const KivDataset* dataset, uint32_t row, size_t field, KivGuid* value);
/** The value of a Text or Memo, empty for null. Example: "Alfa". */
KIV_API KivLength KivDatasetGetText(const KivDataset* dataset, uint32_t row, size_t field, char* buffer,
                                    size_t capacity);
/** The value of a WideText in UTF-16 units, empty for null. Example: 4 units. */
KIV_API KivLength KivDatasetGetWideText(const KivDataset* dataset, uint32_t row, size_t field, uint16_t* buffer,
                                        size_t capacity);
/** The value of a Blob, cut to `capacity` bytes and not terminated; its size, 0 for null. Example: 3 bytes. */
KIV_API KivLength KivDatasetGetBytes(const KivDataset* dataset, uint32_t row, size_t field, uint8_t* buffer,
                                     size_t capacity);

/** How many changes the log remembers. Example: 3. */
KIV_API KivLength KivDatasetChangeCount(const KivDataset* dataset);
/** Notes the present point of the history and stores its number. Example: 0. */
KIV_API KivStatus KivDatasetSetMark(KivDataset* dataset, size_t* mark);
/** Takes back every change since the mark. Fails for a mark that has ended. Example: 0. */
KIV_API KivStatus KivDatasetRollbackTo(KivDataset* dataset, size_t mark);
/** Takes back the last change; 0 if there is none. Example: 1. */
KIV_API KivAnswer KivDatasetUndoLast(KivDataset* dataset);
/** Gives a row its original values, a deleted one its life, and deletes an inserted one. Example: 0. */
KIV_API KivStatus KivDatasetRevertRow(KivDataset* dataset, uint32_t row);
/** Takes back every change and forgets the history. Example: 0. */
KIV_API KivStatus KivDatasetCancelChanges(KivDataset* dataset);
/** Makes the present values the original ones and forgets the history. Example: 0. */
KIV_API KivStatus KivDatasetAcceptChanges(KivDataset* dataset);
/** Gives back memory that nobody uses and numbers the rows anew. Example: 0. */
KIV_API KivStatus KivDatasetCompact(KivDataset* dataset);

/** Makes the net of the changes and stores its address; it stays as it is. Free it with KivDeltaFree. Example: 0. */
KIV_API KivStatus KivDatasetMakeDelta(KivDataset* dataset, KivDelta** delta);
/** Frees a delta; null is ignored. Example: KivDeltaFree(delta); */
KIV_API void KivDeltaFree(KivDelta* delta);
/** How many tickets there are. Example: 1 after one row was changed. */
KIV_API KivLength KivDeltaCount(const KivDelta* delta);
/** Stores the delta's random number. Example: 0. */
KIV_API KivStatus KivDeltaId(const KivDelta* delta, KivGuid* id);
/** Stores what happened to the ticket's row, and the row, unless a pointer is null. Example: KIV_CHANGE_UPDATE, row 0.
 */
KIV_API KivStatus KivDeltaTicket(const KivDelta* delta, uint32_t ticket, int32_t* kind, uint32_t* row);
/** Whether the field's value is to be written. Example: 1 for a changed field. */
KIV_API KivAnswer KivDeltaIsChanged(const KivDelta* delta, uint32_t ticket, size_t field);
/** Whether there is an original value. Example: 0 in an inserted row. */
KIV_API KivAnswer KivDeltaHasOriginal(const KivDelta* delta, uint32_t ticket, size_t field);
/** Stores a value of a Boolean: the original one if `original` is not 0, else the new one; 0 for null. Example: 1. */
KIV_API KivAnswer KivDeltaGetBoolean(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                     int32_t* value);
/** Stores a value of a Int16, Int32, Int64 or AutoInc: the original one if `original` is not 0, else the new one; 0 for
 * null. Example: 1. */
KIV_API KivAnswer KivDeltaGetInt64(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                   int64_t* value);
/** Stores a value of a Double: the original one if `original` is not 0, else the new one; 0 for null. Example: 1. */
KIV_API KivAnswer KivDeltaGetDouble(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                    double* value);
/** Stores a value of a Currency, in ten-thousandths: the original one if `original` is not 0, else the new one; 0 for
 * null. Example: 1. */
KIV_API KivAnswer KivDeltaGetCurrency(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                      int64_t* value);
/** Stores a value of a Date, Time or DateTime, in days: the original one if `original` is not 0, else the new one; 0
 * for null. Example: 1. */
KIV_API KivAnswer KivDeltaGetDateTime(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                      double* value);
/** Stores a value of a Guid: the original one if `original` is not 0, else the new one; 0 for null. Example: 1. */
KIV_API KivAnswer KivDeltaGetGuid(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                  KivGuid* value);
/** The value of a Text or Memo, empty for null. Example: "Alfa". */
KIV_API KivLength KivDeltaGetText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, char* buffer,
                                  size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
