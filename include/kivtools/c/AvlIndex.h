/**
 * @file
 * The index from 32-bit keys to payloads that never move. See kivtools/UTreeAVL2.h for what it does and costs.
 */
#ifndef KIVTOOLS_C_AVLINDEX_H
#define KIVTOOLS_C_AVLINDEX_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** An index; only ever handled by its address. */
typedef struct KivAVLIndex KivAVLIndex;

/** A node of an index; valid as long as the index. */
typedef struct KivAVLNode {
  const KivAVLIndex* index;
  void* payload; /**< null where there is no node */
} KivAVLNode;

/** Called for each entry of a walk. Anything but 0 ends the walk, which then returns it. It may add keys. */
typedef int32_t (*KivAvlForEach)(void* context, int32_t key, void* payload);

/**
 * Makes an empty index for payloads of that many bytes and stores its address in `index`. largeBuffers not 0 takes
 * memory for 100,000 nodes at a time. Fails for a negative size. Example: 0 for `KivAVLIndexCreate(8, 0, &index)`.
 */
KIV_API KivStatus KivAVLIndexCreate(int32_t payloadSize, int32_t largeBuffers, KivAVLIndex** index);

/** Frees an index; null is ignored. Payload addresses end with it. */
KIV_API void KivAVLIndexDestroy(KivAVLIndex* index);

/**
 * Stores the address of the payload of `key`, which is added if it is missing; on an empty index with insert 0 nothing
 * is added and null is stored. Payloads are not aligned: copy with memcpy. Example: 0, and `*payload` is 8 zero bytes.
 */
KIV_API KivStatus KivAVLIndexFind(KivAVLIndex* index, int32_t key, int32_t insert, void** payload);

/** Stores the number of levels. Example: 2 after keys 1, 2, 3. */
KIV_API KivStatus KivAVLIndexHeight(const KivAVLIndex* index, int32_t* height);

/** Stores the top node, one whose payload is null on an empty index. Example: the node of key 2 after keys 1, 2, 3. */
KIV_API KivStatus KivAVLIndexRoot(const KivAVLIndex* index, KivAVLNode* node);

/** Calls back for each entry in ascending order; returns 0, what the callback returned to end the walk, or an error. */
KIV_API int32_t KivAVLIndexForEachInOrder(KivAVLIndex* index, KivAvlForEach callback, void* context);

/** The same in descending order; the name is historical. Example: keys 1 to 3 come as 3, 2, 1. */
KIV_API int32_t KivAVLIndexForEachPreOrder(KivAVLIndex* index, KivAvlForEach callback, void* context);

/** The bytes taken for added blocks by all indexes, as AvlMemory counts them. Example: 0 at first. */
KIV_API int32_t KivAvlMemory(void);

/** Sets that count. Example: `KivSetAvlMemory(0)` before a measurement. */
KIV_API void KivSetAvlMemory(int32_t bytes);

#ifdef __cplusplus
}
#endif

#endif
