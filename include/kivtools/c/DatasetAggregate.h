/**
 * @file
 * Counts, sums, means and extremes over the rows of a dataset, which follow every edit. See
 * kivtools/dataset/Aggregate.h for what they do and docs/filters.md for the language.
 *
 * An aggregate fails with KIV_ERROR_GENERAL once its dataset is freed, and is used from one thread at a time.
 */
#ifndef KIVTOOLS_C_DATASET_AGGREGATE_H
#define KIVTOOLS_C_DATASET_AGGREGATE_H

#include "kivtools/c/Base.h"
#include "kivtools/c/Dataset.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A figure over all rows, or one for each group of them. */
typedef struct KivAggregate KivAggregate;

/** Compiles "sum(suma)" over all rows, or over those that are equal in the fields of `groupBy`, and stores its address.
 * Fails with KIV_ERROR_FILTER, whose place KivLastErrorPlace tells, for a text that is no figure. Example: 0 for
 * "count(*)" by "partener". */
KIV_API KivStatus KivAggregateNew(KivDataset* dataset, const char* what, size_t length, const char* groupBy,
                                  size_t groupByLength, KivAggregate** aggregate);
/** The same for a figure with parameters: `names` are theirs, without colons and with commas between them, `values` has
 * one for each. Example: 0 for "sum(suma * :cota)" with "cota" and 2100 ten-thousandths. */
KIV_API KivStatus KivAggregateNewWith(KivDataset* dataset, const char* what, size_t length, const char* groupBy,
                                      size_t groupByLength, const char* names, size_t namesLength,
                                      const KivFieldValue* values, size_t count, KivAggregate** aggregate);
/** Frees an aggregate; null is ignored. Example: KivAggregateFree(aggregate); */
KIV_API void KivAggregateFree(KivAggregate* aggregate);
/** The figure of the group with that key, of which there are none where rows are not grouped: 1 and the value, 0 for
 * null. Texts stay until the next call with this aggregate. Example: 1 and 2592576 ten-thousandths. */
KIV_API KivAnswer KivAggregateGet(KivAggregate* aggregate, const KivFieldValue* key, size_t count,
                                  KivFieldValue* value);
/** How many groups there are, in the order of their keys; KivAggregateGroup gives them as they are now. Example: 3. */
KIV_API KivLength KivAggregateGroupCount(KivAggregate* aggregate);
/** The figure of a group, as KivAggregateGet. Example: 1 and 2. */
KIV_API KivAnswer KivAggregateGroupValue(KivAggregate* aggregate, size_t group, KivFieldValue* value);
/** A field of a group's key: 1 and the value, 0 for null. Example: 1 and "Alfa". */
KIV_API KivAnswer KivAggregateGroupKey(KivAggregate* aggregate, size_t group, size_t field, KivFieldValue* value);

#ifdef __cplusplus
}
#endif

#endif
