/**
 * @file
 * The structs of the Arrow C data interface, by which programs hand columns to each other without a library in between.
 * They are the same in every program that has them; the guards let each see them once.
 */
#ifndef KIVTOOLS_DATASET_ARROWDATA_H
#define KIVTOOLS_DATASET_ARROWDATA_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1 /* the order of the dictionary's entries has a meaning */
#define ARROW_FLAG_NULLABLE 2           /* the column may hold nulls */
#define ARROW_FLAG_MAP_KEYS_SORTED 4    /* of maps, which datasets do not have */

/** What a column is: its type, its name, the columns within it. */
struct ArrowSchema {
  const char* format;   /**< the type, as "l" for 64-bit integers */
  const char* name;     /**< in UTF-8, or null */
  const char* metadata; /**< keys and values with their lengths, or null */
  int64_t flags;        /**< ARROW_FLAG_... */
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;       /**< the type of the entries, where the column holds their numbers; or null */
  void (*release)(struct ArrowSchema*); /**< gives everything back; null afterwards, and once it has been moved */
  void* private_data;                   /**< whose it is that made the struct */
};

/** The values of a column. */
struct ArrowArray {
  int64_t length;
  int64_t null_count; /**< -1 where nobody has counted */
  int64_t offset;     /**< how many elements of the buffers come before the first */
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*); /**< gives everything back; null afterwards, and once it has been moved */
  void* private_data;                  /**< whose it is that made the struct */
};

#endif

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

/** Arrays of one schema, one after another. */
struct ArrowArrayStream {
  /** Makes the schema; returns 0, or an errno code. */
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  /** Makes the next array, one without `release` at the end; returns 0, or an errno code. */
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  /** What the last failure was, in UTF-8, or null; it stays until the next call. */
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*); /**< gives the stream back, but none of its arrays */
  void* private_data;                        /**< whose it is that made the struct */
};

#endif

#ifdef __cplusplus
}
#endif

#endif
