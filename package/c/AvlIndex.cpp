#include "kivtools/c/AvlIndex.h"

#include <bit>

#include "kivtools/UTreeAVL2.h"
#include "package/c/Abi.h"

using namespace kiv::c;
using kiv::TKivAVLIndex;

struct KivAVLIndex : TKivAVLIndex {
  using TKivAVLIndex::TKivAVLIndex;
};

namespace {

/// Thrown to end a walk with the callback's answer.
struct EndOfWalk {
  std::int32_t answer;
};

using Place = std::array<const void*, 2>;
static_assert(sizeof(Place) == sizeof(TKivAVLIndex::NodeView));

KivAnswer GiveNode(TKivAVLIndex::NodeView view, KivAVLNode& node) {
  if (!view) {
    return 0;
  }
  const auto place = std::bit_cast<Place>(view);
  node = {view.Key(), view.Balance(), view.Payload(), {place[0], place[1]}};
  return 1;
}

/// The node at a place that GiveNode has given.
TKivAVLIndex::NodeView ViewOf(const KivAVLNode& node) {
  return std::bit_cast<TKivAVLIndex::NodeView>(Place{node.place[0], node.place[1]});
}

std::int32_t Walk(void (TKivAVLIndex::*walk)(const kiv::TKivAvlForEach&), KivAVLIndex* index, KivAvlForEach callback,
                  void* context, const char* name = __builtin_FUNCTION()) noexcept {
  try {
    KIV_REQUIRED(callback);
    (KIV_REQUIRED(index).*walk)([=](std::int32_t key, void* payload) {
      if (const std::int32_t answer = callback(context, key, payload); answer > 0) {
        throw EndOfWalk{answer};
      }
    });
    return KIV_OK;
  } catch (const EndOfWalk& end) {
    return end.answer;
  } catch (...) {
    return ReportCurrentException(name);
  }
}

}  // namespace

extern "C" {

KivStatus KivAVLIndexCreate(int32_t payloadSize, int32_t largeBuffers, KivAVLIndex** index) {
  return Run([=] {
    KivAVLIndex*& result = KIV_REQUIRED(index);
    result = new KivAVLIndex(payloadSize, largeBuffers != 0);
  });
}

void KivAVLIndexDestroy(KivAVLIndex* index) {
  delete index;
}

KivStatus KivAVLIndexFind(KivAVLIndex* index, int32_t key, int32_t insert, void** payload) {
  return Run([=] {
    void*& result = KIV_REQUIRED(payload);
    result = KIV_REQUIRED(index).Find(key, insert != 0);
  });
}

KivStatus KivAVLIndexHeight(const KivAVLIndex* index, int32_t* height) {
  return Run([=] {
    int32_t& result = KIV_REQUIRED(height);
    result = KIV_REQUIRED(index).Height();
  });
}

KivAnswer KivAVLIndexRoot(const KivAVLIndex* index, KivAVLNode* node) {
  return GiveAnswer([=] { return GiveNode(KIV_REQUIRED(index).Root(), KIV_REQUIRED(node)); });
}

KivAnswer KivAVLNodeLeft(const KivAVLNode* node, KivAVLNode* left) {
  return GiveAnswer([=] { return GiveNode(ViewOf(KIV_REQUIRED(node)).Left(), KIV_REQUIRED(left)); });
}

KivAnswer KivAVLNodeRight(const KivAVLNode* node, KivAVLNode* right) {
  return GiveAnswer([=] { return GiveNode(ViewOf(KIV_REQUIRED(node)).Right(), KIV_REQUIRED(right)); });
}

int32_t KivAVLIndexForEachInOrder(KivAVLIndex* index, KivAvlForEach callback, void* context) {
  return Walk(&TKivAVLIndex::ForEachInOrder, index, callback, context);
}

int32_t KivAVLIndexForEachPreOrder(KivAVLIndex* index, KivAvlForEach callback, void* context) {
  return Walk(&TKivAVLIndex::ForEachPreOrder, index, callback, context);
}

int32_t KivAvlMemory(void) {
  return kiv::AvlMemory;
}

void KivSetAvlMemory(int32_t bytes) {
  kiv::AvlMemory = bytes;
}

}  // extern "C"
