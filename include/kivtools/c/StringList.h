/**
 * @file
 * Lists of texts, for the operations that give or take more than one. A list belongs to whoever made it, who frees it.
 */
#ifndef KIVTOOLS_C_STRING_LIST_H
#define KIVTOOLS_C_STRING_LIST_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** An ordered list of texts. */
typedef struct KivStringList KivStringList;

/** A new empty list, null for want of memory. Example: KivStringList* list = KivStringListNew(); */
KIV_API KivStringList* KivStringListNew(void);

/** Frees a list; null is taken. Example: KivStringListFree(list); */
KIV_API void KivStringListFree(KivStringList* list);

/** How many texts the list holds. Example: 0 for a new one. */
KIV_API KivLength KivStringListCount(const KivStringList* list);

/** Appends a copy of the text. Example: KivStringListAdd(list, "a", KIV_ZERO_ENDED) gives 0. */
KIV_API KivStatus KivStringListAdd(KivStringList* list, const char* text, size_t length);

/** The text at index, from 0; fails with KIV_ERROR_LIST_INDEX past the last. Example: index 0 gives "a". */
KIV_API KivLength KivStringListItem(const KivStringList* list, size_t index, char* buffer, size_t capacity);

/** Removes all texts. Example: KivStringListCount is 0 afterwards. */
KIV_API KivStatus KivStringListClear(KivStringList* list);

#ifdef __cplusplus
}
#endif

#endif
