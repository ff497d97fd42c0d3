#include "Expect.h"

static int32_t EndAtTwo(void* context, int32_t key, void* payload) {
  (void)payload;
  *(int32_t*)context = 10 * *(int32_t*)context + key;
  return key == 2 ? 77 : 0;
}

void AvlIndexTest(void) {
  static const char zeros[8] = {0};
  KivAVLIndex* index = NULL;
  KivAVLNode root;
  KivAVLNode child;
  void* payload = &root;
  int32_t number = 0;
  KivSetAvlMemory(5);
  EXPECT(KivAVLIndexCreate(-1, 0, &index) == -KIV_ERROR_GENERAL && index == NULL);
  EXPECT(KivAVLIndexCreate(8, 0, &index) == KIV_OK);
  EXPECT(KivAVLIndexFind(index, 1, 0, &payload) == KIV_OK && payload == NULL);
  EXPECT(KivAVLIndexRoot(index, &root) == 0);
  for (int32_t key = 1; key <= 3; ++key) {
    EXPECT(KivAVLIndexFind(index, key, 1, &payload) == KIV_OK && memcmp(payload, zeros, 8) == 0);
  }
  EXPECT(KivAVLIndexRoot(index, &root) == 1 && root.key == 2 && root.balance == 0);
  EXPECT(KivAVLNodeLeft(&root, &child) == 1 && child.key == 1 && KivAVLNodeLeft(&child, &child) == 0);
  EXPECT(KivAVLNodeRight(&root, &child) == 1 && child.key == 3 && child.payload == payload);
  EXPECT(KivAVLIndexHeight(index, &number) == KIV_OK && number == 2);
  number = 0;
  EXPECT(KivAVLIndexForEachInOrder(index, EndAtTwo, &number) == 77 && number == 12);
  number = 0;
  EXPECT(KivAVLIndexForEachPreOrder(index, EndAtTwo, &number) == 77 && number == 32);
  EXPECT(KivAvlMemory() == 5);
  KivSetAvlMemory(0);
  KivAVLIndexDestroy(index);
  KivAVLIndexDestroy(NULL);
}
