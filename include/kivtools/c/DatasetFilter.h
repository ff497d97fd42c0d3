/**
 * @file
 * Conditions on the rows of a dataset, and values worked out from them, written as text. See
 * kivtools/dataset/Filter.h for what they do and docs/filters.md for the language.
 *
 * A filter is used as long as its dataset is, from one thread at a time. `names` are those of the parameters, without
 * colons and with commas between them; `values` has one for each of the `count` names.
 */
#ifndef KIVTOOLS_C_DATASET_FILTER_H
#define KIVTOOLS_C_DATASET_FILTER_H

#include "kivtools/c/Base.h"
#include "kivtools/c/Dataset.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A condition on rows. */
typedef struct KivFilter KivFilter;
/** A value worked out from the fields of a row. */
typedef struct KivExpression KivExpression;

/** Adds a column that is worked out from the others of its row, and stores its place, behind the fields. It is read as
 * a field is and follows every edit; it is neither set nor saved, and a snapshot does not have it. Fails with
 * KIV_ERROR_FILTER for a text that is no expression. Example: 5 for "tva" and "suma * 0.21" in a dataset of five
 * fields. */
KIV_API KivStatus KivDatasetCalculate(KivDataset* dataset, const char* name, size_t length, const char* expression,
                                      size_t expressionLength, size_t* field);
/** Adds a column with what the field `wanted` of another dataset, or of this one, holds in the row whose only key field
 * `key` is what `by` is here; null where there is no such row. Without a name it has that of `wanted`. It is as one of
 * KivDatasetCalculate; once the other dataset is freed, reading it fails with KIV_ERROR_FILTER. Example: 6 for the
 * partner's name by the partner's number. */
KIV_API KivStatus KivDatasetLookup(KivDataset* dataset, size_t by, KivDataset* other, size_t key, size_t wanted,
                                   const char* name, size_t length, size_t* field);

/** Compiles a condition and stores its address. Fails with KIV_ERROR_FILTER, whose place KivLastErrorPlace tells, for a
 * text that is none. Example: 0 for "suma > :prag" with "prag" and one value, -12 for "suma >". */
KIV_API KivStatus KivFilterNew(const KivDataset* dataset, const char* text, size_t length, const char* names,
                               size_t namesLength, const KivFieldValue* values, size_t count, KivFilter** filter);
/** Frees a filter; null is ignored. Example: KivFilterFree(filter); */
KIV_API void KivFilterFree(KivFilter* filter);
/** Whether a row passes. Fails with KIV_ERROR_FILTER where a number is divided by zero or a result does not fit.
 * Example: 1 for a row whose sum is above 1000. */
KIV_API KivAnswer KivFilterTest(const KivFilter* filter, uint32_t row);
/** How many rows pass. Example: 93. */
KIV_API KivLength KivFilterCount(const KivFilter* filter);
/** The rows that pass, in their order, as far as there is room; returns how many pass. Example: 93. */
KIV_API KivLength KivFilterSelect(const KivFilter* filter, uint32_t* rows, size_t capacity);
/** The sum of a field over the rows that pass: 1 and an integer, an amount or a double, 0 where none of them has a
 * value. Example: 1 and 12345600 ten-thousandths. */
KIV_API KivAnswer KivFilterSum(const KivFilter* filter, size_t field, KivFieldValue* sum);

/** Compiles an expression and stores its address; fails as KivFilterNew. Example: 0 for "suma * 0.21". */
KIV_API KivStatus KivExpressionNew(const KivDataset* dataset, const char* text, size_t length, const char* names,
                                   size_t namesLength, const KivFieldValue* values, size_t count,
                                   KivExpression** expression);
/** Frees an expression; null is ignored. Example: KivExpressionFree(expression); */
KIV_API void KivExpressionFree(KivExpression* expression);
/** The type of its values, KIV_FIELD_... Example: KIV_FIELD_CURRENCY for "suma * 0.21". */
KIV_API KivAnswer KivExpressionType(const KivExpression* expression);
/** The value in a row: 1 and the value, 0 for null. Texts and bytes stay until the next call with this expression.
 * Fails as KivFilterTest. Example: 1 and 2592576 ten-thousandths. */
KIV_API KivAnswer KivExpressionEvaluate(KivExpression* expression, uint32_t row, KivFieldValue* value);

#ifdef __cplusplus
}
#endif

#endif
