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

/** A node as it lay in the tree when it was asked for. */
typedef struct KivAVLNode {
  int32_t key;
  int32_t balance;      /**< -1 where the left subtree is one level higher, +1 where the right one is, else 0 */
  void* payload;        /**< the address that KivAVLIndexFind gives */
  const void* place[2]; /**< the library's own */
} KivAVLNode;

/** Called for each entry of a walk. 0 goes on; a number above 0 ends the walk, which returns it. It may add keys. */
typedef int32_t (*KivAvlForEach)(void* context, int32_t key, void* payload);

/**
 * Makes an empty index for payloads of that many bytes and stores its address in `index`. largeBuffers not 0 takes
 * memory for 100,000 nodes at a time. Fails for a negative size. Example: 0 for `KivAVLIndexCreate(8, 0, &index)`.
 */
KIV_API KivStatus KivAVLIndexCreate(int32_t payloadSize, int32_t largeBuffers, KivAVLIndex** index);

/** Frees an index; null is ignored. Payload addresses end with it. Example: KivAVLIndexDestroy(index); */
KIV_API void KivAVLIndexDestroy(KivAVLIndex* index);

/**
 * Stores the address of the payload of `key`, which is added if it is missing; on an empty index with insert 0 nothing
 * is added and null is stored. Payloads are not aligned: copy with memcpy. Example: 0, and `*payload` is 8 zero bytes.
 */
KIV_API KivStatus KivAVLIndexFind(KivAVLIndex* index, int32_t key, int32_t insert, void** payload);

/** Stores the number of levels. Example: 2 after keys 1, 2, 3. */
KIV_API KivStatus KivAVLIndexHeight(const KivAVLIndex* index, int32_t* height);

/** Whether there is a top node; if so it is stored. Example: 1, and `node->key` is 2 after keys 1, 2, 3. */
KIV_API KivAnswer KivAVLIndexRoot(const KivAVLIndex* index, KivAVLNode* node);

/** Whether a node has smaller keys below it; if so their top node is stored. Example: key 1 below key 2. */
KIV_API KivAnswer KivAVLNodeLeft(const KivAVLNode* node, KivAVLNode* left);

/** Whether a node has larger keys below it; if so their top node is stored. Example: key 3 below key 2. */
KIV_API KivAnswer KivAVLNodeRight(const KivAVLNode* node, KivAVLNode* right);

/**
 * Calls back for each entry in ascending order; returns 0, what the callback ended the walk with, or a
 * negated error code. Example: 0 after all entries.
 */
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
