/**
 * @file
 * Datasets: typed rows in memory, with keys, change log, marks, roll-back and the net of all changes. See
 * kivtools/dataset/Dataset.h for what they do.
 *
 * A field is named by its place in the schema, which KivDatasetField finds. A row is open for editing from its first
 * KivDatasetSet... or from KivDatasetInsert until KivDatasetPost or KivDatasetCancel; one row of a dataset at a time.
 * Values of an open row are seen by nobody before it is posted. A handle is used from one thread at a time.
 *
 * Where several values are handed over at once, in keys, bulk loads and to listeners, each is a KivFieldValue.
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
  KIV_FLAG_NO_CHECK = 16, /**< takes no part in it */
  KIV_FLAG_NO_CASE = 32,  /**< its texts are in Romanian order without case; otherwise in that with case */
  KIV_FLAG_BINARY = 64    /**< its texts are in the order of their bytes */
};

/** The states of a row. */
enum { KIV_ROW_UNMODIFIED = 0, KIV_ROW_INSERTED = 1, KIV_ROW_MODIFIED = 2, KIV_ROW_DELETED = 3 };

/** What a change did to its row. */
enum { KIV_CHANGE_INSERT = 0, KIV_CHANGE_UPDATE = 1, KIV_CHANGE_DELETE = 2, KIV_CHANGE_RESTORE = 3 };

/** In place of these: more than one row may have changed. */
#define KIV_CHANGE_ALL (-1)

/** Stands for the row that KivDatasetInsert has opened, and for the place before the first row. */
#define KIV_NO_ROW 0xFFFFFFFFu

/** The kinds of a KivFieldValue. */
enum {
  KIV_VALUE_NULL = 0,
  KIV_VALUE_BOOLEAN = 1,   /**< `integer`, 0 or not */
  KIV_VALUE_INTEGER = 2,   /**< `integer` */
  KIV_VALUE_DOUBLE = 3,    /**< `number` */
  KIV_VALUE_CURRENCY = 4,  /**< `integer`, in ten-thousandths */
  KIV_VALUE_DATE_TIME = 5, /**< `number`, in days since 30 December 1899 */
  KIV_VALUE_TEXT = 6,      /**< `units`, `size` bytes in Windows-1250 */
  KIV_VALUE_WIDE_TEXT = 7, /**< `units`, `size` units in UTF-16 */
  KIV_VALUE_GUID = 8,      /**< `guid` */
  KIV_VALUE_BYTES = 9      /**< `units`, `size` bytes */
};

/** A value of any kind, borrowed from who hands it over. A size of texts may be KIV_ZERO_ENDED. */
typedef struct KivFieldValue {
  int32_t kind;
  int64_t integer;
  double number;
  const void* units;
  size_t size;
  KivGuid guid;
} KivFieldValue;

/** A change that is about to be posted: what it does, the row (of an insertion the one that it will be), and for each
 * field the value that it will have and whether that is another than now. */
typedef struct KivProposal {
  int32_t kind;
  uint32_t row;
  const KivFieldValue* values;
  const uint8_t* changed;
  size_t count;
} KivProposal;

/** Asked before a post by KivDatasetPost or KivDatasetDelete; anything but KIV_OK refuses it. May read the dataset, not
 * edit it. */
typedef KivStatus (*KivDatasetBeforePost)(void* context, const KivProposal* proposal);
/** Told after a change: what it did, or KIV_CHANGE_ALL and KIV_NO_ROW, and the fields that an update changed. May read
 * the dataset, not edit it. */
typedef void (*KivDatasetChanged)(void* context, int32_t kind, uint32_t row, const uint16_t* fields, size_t count);

/** A change as the log remembers it: what it did, to which row, and of an update the fields that it changed with what
 * they held before, in the same order. */
typedef struct KivChangeRecord {
  int32_t kind;
  uint32_t row;
  const uint16_t* fields;
  const KivFieldValue* before;
  size_t count;
} KivChangeRecord;

/** Told of a change of the log; anything but KIV_OK ends the walk. May read the dataset, not edit it. */
typedef KivStatus (*KivChangeVisitor)(void* context, const KivChangeRecord* change);

/** Makes an empty list of fields. Free it with KivSchemaFree. Null where there is no memory. */
KIV_API KivSchema* KivSchemaNew(void);
/** Frees a list of fields; null is ignored. Example: KivSchemaFree(schema); */
KIV_API void KivSchemaFree(KivSchema* schema);
/** Adds a field. Example: 0 for `KivSchemaAddField(schema, "suma", KIV_ZERO_ENDED, KIV_FIELD_CURRENCY, 0, 0)`. */
KIV_API KivStatus KivSchemaAddField(KivSchema* schema, const char* name, size_t length, int32_t type, int32_t size,
                                    int32_t flags);

/** Sets what a new row gets in a field, by its place in the list, where nothing is given; the value is copied, and
 * KivDatasetNew fails for one that the field cannot hold. Example: 0 for the field 1 and 100000 ten-thousandths. */
KIV_API KivStatus KivSchemaSetDefault(KivSchema* schema, size_t field, const KivFieldValue* value);

/** Makes an empty dataset and stores its address. Example: fails for a schema without fields. */
KIV_API KivStatus KivDatasetNew(const char* name, size_t length, const KivSchema* schema, KivDataset** dataset);
/** Frees a dataset; null is ignored. Example: KivDatasetFree(dataset); */
KIV_API void KivDatasetFree(KivDataset* dataset);
/** Makes a dataset that stays as this one is now and can only be read, and stores its address; another thread may do
 * that. Editing it and looking up its keys fail. Free it with KivDatasetFree. Example: 0. */
KIV_API KivStatus KivDatasetTakeSnapshot(KivDataset* dataset, KivDataset** snapshot);
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
/** The same for a key of any fields, their values in the order of the schema. Example: 1 for the year and the number of
 * an invoice that is there. */
KIV_API KivAnswer KivDatasetFind(const KivDataset* dataset, const KivFieldValue* key, size_t count, uint32_t* row);

/** Begins a load of many rows that are not changes: no log knows them, and the dataset shows none of them before
 * KivDatasetEndLoad; until then it cannot be edited. Example: 0. */
KIV_API KivStatus KivDatasetBeginLoad(KivDataset* dataset);
/** Loads a row: a value for each field of the schema. A row that is refused is left out, and the load goes on.
 * Example: 0. */
KIV_API KivStatus KivDatasetLoadRow(KivDataset* dataset, const KivFieldValue* values, size_t count);
/** Makes the loaded rows part of the dataset. Where two rows have the same key it fails, naming it, and the load can
 * only be given up. Example: 0. */
KIV_API KivStatus KivDatasetEndLoad(KivDataset* dataset);
/** Gives up the load, if there is one, and its rows. Example: 0. */
KIV_API KivStatus KivDatasetCancelLoad(KivDataset* dataset);

/** Tells the functions, of which either may be null, of every change from now on, and stores a number for
 * KivDatasetRemoveListener. Example: 0. */
KIV_API KivStatus KivDatasetAddListener(KivDataset* dataset, KivDatasetBeforePost before, KivDatasetChanged changed,
                                        void* context, size_t* listener);
/** Tells them no more. Fails for a number that is not in use. Example: 0. */
KIV_API KivStatus KivDatasetRemoveListener(KivDataset* dataset, size_t listener);
/** From now on listeners are told of no single change; calls nest. Example: 0. */
KIV_API KivStatus KivDatasetBeginUpdate(KivDataset* dataset);
/** Ends what the matching KivDatasetBeginUpdate began; after the last one listeners are told once. Example: 0. */
KIV_API KivStatus KivDatasetEndUpdate(KivDataset* dataset);

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
/** Tells the function of each change that the log remembers, oldest first. Fails with KIV_ERROR_GENERAL where the
 * function ends it. Example: 0 after KivDatasetChangeCount calls. */
KIV_API KivStatus KivDatasetForEachChange(KivDataset* dataset, KivChangeVisitor visitor, void* context);
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
/** The value of a WideText in UTF-16 units, empty for null. Example: 4 units. */
KIV_API KivLength KivDeltaGetWideText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                      uint16_t* buffer, size_t capacity);
/** The value of a Blob, cut to `capacity` bytes and not terminated; its size, 0 for null. Example: 3 bytes. */
KIV_API KivLength KivDeltaGetBytes(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                   uint8_t* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
