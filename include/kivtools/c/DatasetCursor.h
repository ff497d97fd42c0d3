/**
 * @file
 * Cursors: places among the rows of a dataset, in an order of their own. See kivtools/dataset/Cursor.h for what they do
 * and for what becomes of them when rows change. A cursor says which row it stands on; KivDatasetGetText and its like
 * read that row, KivDatasetSetText, KivDatasetPost and KivDatasetDelete edit it. A cursor may outlive its dataset; it
 * is of no use then.
 */
#ifndef KIVTOOLS_C_DATASETCURSOR_H
#define KIVTOOLS_C_DATASETCURSOR_H

#include "kivtools/c/Dataset.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A place among the rows of a dataset. */
typedef struct KivCursor KivCursor;

/** Makes a cursor before the first row and stores its address. Example: fails for a snapshot. */
KIV_API KivStatus KivCursorNew(KivDataset* dataset, KivCursor** cursor);
/** Makes a cursor that stands where another one does. Example: KivCursorClone(cursor, &clone); */
KIV_API KivStatus KivCursorClone(const KivCursor* cursor, KivCursor** clone);
/** Frees a cursor; null is ignored. Example: KivCursorFree(cursor); */
KIV_API void KivCursorFree(KivCursor* cursor);

/** Orders by fields. Example: KivCursorOrderBy(cursor, "partener, data desc nulls last", KIV_ZERO_ENDED); */
KIV_API KivStatus KivCursorOrderBy(KivCursor* cursor, const char* order, size_t length);
/** The order as text. Example: "partener, data desc nulls last". */
KIV_API KivLength KivCursorOrder(const KivCursor* cursor, char* buffer, size_t capacity);
/** Leaves only the rows that pass a condition; all of them for an empty text.
 * Example: KivCursorFilter(cursor, "suma > 1000", KIV_ZERO_ENDED); */
KIV_API KivStatus KivCursorFilter(KivCursor* cursor, const char* condition, size_t length);
/** The same for a condition with parameters: `names` are theirs, without colons and with commas between them, `values`
 * has one for each. Example: 0 for "partener = :cine" with "cine" and a text, whatever stands in it. */
KIV_API KivStatus KivCursorFilterWith(KivCursor* cursor, const char* condition, size_t length, const char* names,
                                      size_t namesLength, const KivFieldValue* values, size_t count);
/** Leaves only the rows between two lists of values of the first fields of the order; an empty list sets no limit.
 * Example: fails for more values than the order has fields. */
KIV_API KivStatus KivCursorSetRange(KivCursor* cursor, const KivFieldValue* from, size_t fromCount,
                                    const KivFieldValue* to, size_t toCount);

/** Goes to the first row; whether there is one. Example: 0 for an empty dataset. */
KIV_API KivAnswer KivCursorFirst(KivCursor* cursor);
/** Goes to the last row; whether there is one. Example: 0 for an empty dataset. */
KIV_API KivAnswer KivCursorLast(KivCursor* cursor);
/** Goes to the next row; 0 behind the last. Example: 1 from before the first. */
KIV_API KivAnswer KivCursorNext(KivCursor* cursor);
/** Goes to the row before; 0 before the first. Example: 0 on the first. */
KIV_API KivAnswer KivCursorPrior(KivCursor* cursor);
/** Whether it stands behind the last row. Example: 1 when KivCursorNext has said 0. */
KIV_API KivAnswer KivCursorAtEnd(const KivCursor* cursor);
/** Whether it stands before the first row. Example: 1 for a new cursor. */
KIV_API KivAnswer KivCursorAtStart(const KivCursor* cursor);
/** Whether it stands on a row; if so that is stored. Example: 0 for a new cursor. */
KIV_API KivAnswer KivCursorRow(const KivCursor* cursor, uint32_t* row);

/** Goes to the first row whose fields have these values; 0, and nowhere else, if there is none.
 * Example: 1 for the field 1 and a name that is there. */
KIV_API KivAnswer KivCursorLocate(KivCursor* cursor, const size_t* fields, const KivFieldValue* values, size_t count);
/** Goes to the first row that is not before these values of the first fields of the order; 0, and behind the last, if
 * there is none. Example: 1 for the name "S" where there is "Sapte". */
KIV_API KivAnswer KivCursorLocateNearest(KivCursor* cursor, const KivFieldValue* values, size_t count);
/** How many rows there are in the range. Example: 2. */
KIV_API KivLength KivCursorCount(KivCursor* cursor);
/** The place of its row in the order, from 0. Example: fails on no row. */
KIV_API KivLength KivCursorPosition(KivCursor* cursor);
/** Goes to the row at that place. Example: fails from KivCursorCount on. */
KIV_API KivStatus KivCursorGoTo(KivCursor* cursor, size_t position);
/** Goes to a row; 0, and nowhere else, if it is deleted or not among the cursor's. Example: 1 for a row that is there.
 */
KIV_API KivAnswer KivCursorGoToRow(KivCursor* cursor, uint32_t row);

#ifdef __cplusplus
}
#endif

#endif
