/**
 * @file
 * Datasets and deltas as files and streams, and the journal of a dataset. See kivtools/dataset/Packet.h and
 * kivtools/dataset/Journal.h for what they do. Paths are Text.
 */
#ifndef KIVTOOLS_C_DATASETPACKETS_H
#define KIVTOOLS_C_DATASETPACKETS_H

#include "kivtools/c/Dataset.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How a file is saved; combined by |. */
enum {
  KIV_SAVE_BACKUP = 1,  /**< keeps the file that had the name, with ".bak" at the end of its name */
  KIV_SAVE_NO_FLUSH = 2 /**< does not wait until the file is on the disk */
};

/** When an edit is on the disk. */
enum {
  KIV_FLUSH_EACH_EDIT = 0,   /**< before the edit returns */
  KIV_FLUSH_EACH_SECOND = 1, /**< with the first edit a second or more after the last time */
  KIV_FLUSH_NEVER = 2        /**< when the system writes it */
};

/** What a file holds. */
enum { KIV_PACKET_DATASET = 1, KIV_PACKET_DELTA = 2 };

/** The journal of a dataset. */
typedef struct KivJournal KivJournal;

/** Takes the next bytes of a packet. What it returns other than KIV_OK ends the writing. */
typedef KivStatus (*KivPacketSink)(void* context, const uint8_t* bytes, size_t size);
/** Puts the next bytes of a packet into the buffer and returns how many, 0 at the end only; a negative number ends the
 * reading. */
typedef KivLength (*KivPacketSource)(void* context, uint8_t* buffer, size_t capacity);

/** Stores what a file holds, by its first bytes. Example: KIV_PACKET_DATASET for "linii.kdp". */
KIV_API KivStatus KivPacketContent(const char* path, size_t length, int32_t* content);

/** Saves a dataset as a file. `options` are KIV_SAVE_... Example: 0 for "linii.kdp". */
KIV_API KivStatus KivDatasetSave(const KivDataset* dataset, const char* path, size_t length, int32_t options);
/** Loads a file and stores the dataset's address; the edits of its journal that were done again and the bytes of the
 * journal that were lost are stored too, unless a pointer is null. Example: fails with KIV_ERROR_PACKET for a damaged
 * file. */
KIV_API KivStatus KivDatasetLoad(const char* path, size_t length, KivDataset** dataset, uint64_t* replayed,
                                 uint64_t* lostBytes);
/** Writes a dataset as a packet, piece by piece. Example: 0. */
KIV_API KivStatus KivDatasetWrite(const KivDataset* dataset, KivPacketSink sink, void* context);
/** Reads a packet and stores the dataset's address. Example: 0. */
KIV_API KivStatus KivDatasetRead(KivPacketSource source, void* context, KivDataset** dataset);

/** Saves a delta as a file. Example: 0 for "de-trimis.kdp". */
KIV_API KivStatus KivDeltaSave(const KivDelta* delta, const char* path, size_t length, int32_t options);
/** Loads the file of a delta and stores its address. Example: fails with KIV_ERROR_PACKET for that of a dataset. */
KIV_API KivStatus KivDeltaLoad(const char* path, size_t length, KivDelta** delta);
/** Writes a delta as a packet, piece by piece. Example: 0. */
KIV_API KivStatus KivDeltaWrite(const KivDelta* delta, KivPacketSink sink, void* context);
/** Reads the packet of a delta and stores its address. Example: 0. */
KIV_API KivStatus KivDeltaRead(KivPacketSource source, void* context, KivDelta** delta);

/** Whether this thread's last failure was KIV_ERROR_PACKET; if so the number of the chunk, -1 outside of them all, and
 * the bytes before the fault are stored, unless a pointer is null. So it is for KIV_ERROR_FILTER, with -1 and the bytes
 * of the text before the fault. Example: 1, chunk 0 and byte 45. */
KIV_API KivAnswer KivLastErrorPlace(int32_t* chunk, uint64_t* offset);

/** Saves the dataset and begins a journal beside the file; stores its address. `flush` is one of KIV_FLUSH_...,
 * `options` are KIV_SAVE_.... It is freed before its dataset. Example: fails while another journal keeps the file. */
KIV_API KivStatus KivJournalNew(KivDataset* dataset, const char* path, size_t length, int32_t flush, int32_t options,
                                KivJournal** journal);
/** Ends a journal; null is ignored. Example: KivJournalFree(journal); */
KIV_API void KivJournalFree(KivJournal* journal);
/** Saves the dataset and empties the log. Example: 0. */
KIV_API KivStatus KivJournalSave(KivJournal* journal);
/** Waits until the log is on the disk. Example: 0. */
KIV_API KivStatus KivJournalFlush(KivJournal* journal);
/** Stores the bytes of the log. Example: 28 before the first edit. */
KIV_API KivStatus KivJournalSize(const KivJournal* journal, uint64_t* size);

/** The dataset's name. Example: "linii". */
KIV_API KivLength KivDatasetName(const KivDataset* dataset, char* buffer, size_t capacity);
/** How many fields it has. Example: 3. */
KIV_API KivLength KivDatasetFieldCount(const KivDataset* dataset);
/** The name of a field. Example: "suma" for 1. */
KIV_API KivLength KivDatasetFieldName(const KivDataset* dataset, size_t field, char* buffer, size_t capacity);
/** Stores type, size and flags of a field, unless a pointer is null. Example: KIV_FIELD_CURRENCY, 0, 0. */
KIV_API KivStatus KivDatasetFieldInfo(const KivDataset* dataset, size_t field, int32_t* type, int32_t* size,
                                      int32_t* flags);
/** What a new row gets in a field where nothing is given: 1 and the value, 0 for null. Texts stay as long as the
 * dataset. Example: 1 and 100000 ten-thousandths. */
KIV_API KivAnswer KivDatasetFieldDefault(const KivDataset* dataset, size_t field, KivFieldValue* value);
/** How many rows have that state, KIV_ROW_.... Example: 1 for KIV_ROW_DELETED. */
KIV_API KivLength KivDatasetCountOf(const KivDataset* dataset, int32_t state);
/** The value of a row for people, as UTF-8; empty for null. Example: "1234.5600", "2026-03-05". */
KIV_API KivLength KivDatasetValueText(const KivDataset* dataset, uint32_t row, size_t field, char* buffer,
                                      size_t capacity);

/** The name of the delta's dataset. Example: "linii". */
KIV_API KivLength KivDeltaName(const KivDelta* delta, char* buffer, size_t capacity);
/** How many fields it has. Example: 3. */
KIV_API KivLength KivDeltaFieldCount(const KivDelta* delta);
/** The name of a field. Example: "suma" for 1. */
KIV_API KivLength KivDeltaFieldName(const KivDelta* delta, size_t field, char* buffer, size_t capacity);
/** Stores type, size and flags of a field, unless a pointer is null. Example: KIV_FIELD_CURRENCY, 0, 0. */
KIV_API KivStatus KivDeltaFieldInfo(const KivDelta* delta, size_t field, int32_t* type, int32_t* size, int32_t* flags);
/** A value of a ticket for people, as UTF-8: the original one if `original` is not 0, else the new one; empty for null.
 * Example: "1234.5600". */
KIV_API KivLength KivDeltaValueText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original,
                                    char* buffer, size_t capacity);
/** Whether a value of a ticket is null: the original one if `original` is not 0, else the new one. Example: 0. */
KIV_API KivAnswer KivDeltaIsNull(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original);

#ifdef __cplusplus
}
#endif

#endif
