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

std::int32_t Walk(const char* operation, KivAVLIndex* index, KivAvlForEach callback, void* context,
                  void (TKivAVLIndex::*walk)(const kiv::TKivAvlForEach&)) noexcept {
  try {
    KivAVLIndex& walked = PointerArgument(index, operation);
    if (callback == nullptr) {
      throw ArgumentError(kiv::Text(operation) + ": callback nul");
    }
    (walked.*walk)([=](std::int32_t key, void* payload) {
      if (const std::int32_t answer = callback(context, key, payload); answer > 0) {
        throw EndOfWalk{answer};
      }
    });
    return KIV_OK;
  } catch (const EndOfWalk& end) {
    return end.answer;
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace

extern "C" {

KivStatus KivAVLIndexCreate(int32_t payloadSize, int32_t largeBuffers, KivAVLIndex** index) {
  return Run([=] {
    KivAVLIndex*& result = PointerArgument(index, "KivAVLIndexCreate: index");
    result = new KivAVLIndex(payloadSize, largeBuffers != 0);
  });
}

void KivAVLIndexDestroy(KivAVLIndex* index) {
  delete index;
}

KivStatus KivAVLIndexFind(KivAVLIndex* index, int32_t key, int32_t insert, void** payload) {
  return Run([=] {
    void*& result = PointerArgument(payload, "KivAVLIndexFind: payload");
    result = PointerArgument(index, "KivAVLIndexFind: index").Find(key, insert != 0);
  });
}

KivStatus KivAVLIndexHeight(const KivAVLIndex* index, int32_t* height) {
  return Run([=] {
    int32_t& result = PointerArgument(height, "KivAVLIndexHeight: height");
    result = PointerArgument(index, "KivAVLIndexHeight: index").Height();
  });
}

KivAnswer KivAVLIndexRoot(const KivAVLIndex* index, KivAVLNode* node) {
  return GiveAnswer([=] {
    return GiveNode(PointerArgument(index, "KivAVLIndexRoot: index").Root(),
                    PointerArgument(node, "KivAVLIndexRoot: node"));
  });
}

KivAnswer KivAVLNodeLeft(const KivAVLNode* node, KivAVLNode* left) {
  return GiveAnswer([=] {
    return GiveNode(ViewOf(PointerArgument(node, "KivAVLNodeLeft: node")).Left(),
                    PointerArgument(left, "KivAVLNodeLeft: left"));
  });
}

KivAnswer KivAVLNodeRight(const KivAVLNode* node, KivAVLNode* right) {
  return GiveAnswer([=] {
    return GiveNode(ViewOf(PointerArgument(node, "KivAVLNodeRight: node")).Right(),
                    PointerArgument(right, "KivAVLNodeRight: right"));
  });
}

int32_t KivAVLIndexForEachInOrder(KivAVLIndex* index, KivAvlForEach callback, void* context) {
  return Walk("KivAVLIndexForEachInOrder", index, callback, context, &TKivAVLIndex::ForEachInOrder);
}

int32_t KivAVLIndexForEachPreOrder(KivAVLIndex* index, KivAvlForEach callback, void* context) {
  return Walk("KivAVLIndexForEachPreOrder", index, callback, context, &TKivAVLIndex::ForEachPreOrder);
}

int32_t KivAvlMemory(void) {
  return kiv::AvlMemory;
}

void KivSetAvlMemory(int32_t bytes) {
  kiv::AvlMemory = bytes;
}

}  // extern "C"
