/**
 * @file
 * Datasets as columns in memory. See kivtools/dataset/Arrow.h for what the functions do, kivtools/dataset/ArrowData.h
 * for the structs.
 */
#ifndef KIVTOOLS_C_DATASETARROW_H
#define KIVTOOLS_C_DATASETARROW_H

#include "kivtools/c/Dataset.h"
#include "kivtools/dataset/ArrowData.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How columns are handed out and taken in. */
enum {
  KIV_ARROW_TEN_THOUSANDTHS = 1 /**< amounts are 64-bit integers, as the dataset has them, not decimals */
};

/** Hands out the rows of a dataset, or of a snapshot, that are not deleted as a stream of record batches. It outlives
 * the dataset, and is the caller's to release. `options` are KIV_ARROW_.... Example: 0, then stream.get_next(&stream,
 * &batch). */
KIV_API KivStatus KivDatasetArrowExport(KivDataset* dataset, int32_t options, struct ArrowArrayStream* stream);
/** Makes a dataset of all batches of a stream and stores its address. `types` says what is known of columns, by their
 * names, and may be null; `options` are KIV_ARROW_.... The stream is released whatever happens, unless an argument is
 * refused. Example: fails with KIV_ERROR_PACKET for a column of lists. */
KIV_API KivStatus KivDatasetArrowImport(struct ArrowArrayStream* stream, const char* name, size_t length,
                                        const KivSchema* types, int32_t options, KivDataset** dataset);

#ifdef __cplusplus
}
#endif

#endif
