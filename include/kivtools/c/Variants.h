/**
 * @file
 * Loosely typed values, with a default for those that are absent.
 */
#ifndef KIVTOOLS_C_VARIANTS_H
#define KIVTOOLS_C_VARIANTS_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The kinds of a KivVariant. */
enum {
  KIV_VARIANT_NULL = 0,
  KIV_VARIANT_BOOLEAN = 1,   /**< integer: 0 for no */
  KIV_VARIANT_INTEGER = 2,   /**< integer */
  KIV_VARIANT_DOUBLE = 3,    /**< number */
  KIV_VARIANT_CURRENCY = 4,  /**< integer: ten-thousandths */
  KIV_VARIANT_DATE_TIME = 5, /**< number: days since 30 December 1899 */
  KIV_VARIANT_TEXT = 6       /**< text and length */
};

/** A loosely typed value: its kind says which member holds it. */
typedef struct KivVariant {
  int32_t kind;
  int64_t integer;
  double number;
  const char* text;
  size_t length;
} KivVariant;

/** A value as days since 30 December 1899, defaultDays for the null kind. Example: the text "1.5" gives 1.5. */
KIV_API KivStatus KivVarToDateDef(const KivVariant* value, double defaultDays, double* days);

/** A value as a 32-bit integer, halves to even, defaultValue for the null kind. Example: 2.5 gives 2. */
KIV_API KivStatus KivVarToIntDef(const KivVariant* value, int32_t defaultValue, int32_t* result);

#ifdef __cplusplus
}
#endif

#endif
