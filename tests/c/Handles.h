#pragma once

#include <cstdint>
#include <memory>

#include "kivtools/kiv.h"

/// For each kind of handle that the C interface knows, one real object for tests and fuzzers to hand over: the bytes of
/// a handle cannot be made up. A new kind of handle is added here.
template <class Handle>
Handle* RealObject() = delete;

template <>
inline KivStringList* RealObject() {
  static const std::unique_ptr<KivStringList, decltype(KivStringListFree)*> list(KivStringListNew(), KivStringListFree);
  return list.get();
}

template <>
inline KivAVLIndex* RealObject() {
  static const auto index = [] {
    KivAVLIndex* made = nullptr;
    void* payload = nullptr;
    KivAVLIndexCreate(8, 0, &made);
    KivAVLIndexFind(made, 1, 1, &payload);
    return std::unique_ptr<KivAVLIndex, decltype(KivAVLIndexDestroy)*>(made, KivAVLIndexDestroy);
  }();
  return index.get();
}

template <>
inline KivAVLNode* RealObject() {
  static KivAVLNode node = [] {
    KivAVLNode root;
    KivAVLIndexRoot(RealObject<KivAVLIndex>(), &root);
    return root;
  }();
  return &node;
}

template <>
inline KivSchema* RealObject() {
  static const std::unique_ptr<KivSchema, decltype(KivSchemaFree)*> schema(KivSchemaNew(), KivSchemaFree);
  return schema.get();
}

/// A dataset with a field of each type, the last of them the key, the net of its two insertions and a cursor.
struct RealRows {
  std::unique_ptr<KivDataset, decltype(KivDatasetFree)*> dataset{nullptr, KivDatasetFree};
  std::unique_ptr<KivDelta, decltype(KivDeltaFree)*> delta{nullptr, KivDeltaFree};
  std::unique_ptr<KivCursor, decltype(KivCursorFree)*> cursor{nullptr, KivCursorFree};

  RealRows() {
    const std::unique_ptr<KivSchema, decltype(KivSchemaFree)*> schema(KivSchemaNew(), KivSchemaFree);
    for (std::int32_t type = KIV_FIELD_INT16; type <= KIV_FIELD_AUTO_INC; ++type) {
      const char name[] = {'f', static_cast<char>('a' + type)};
      KivSchemaAddField(schema.get(), name, sizeof name, type, 0, type == KIV_FIELD_AUTO_INC ? KIV_FLAG_KEY : 0);
    }
    KivDataset* made = nullptr;
    KivDatasetNew("rows", KIV_ZERO_ENDED, schema.get(), &made);
    dataset.reset(made);
    for (int row = 0; row < 5; ++row) {
      KivDatasetInsert(made);
      KivDatasetPost(made, nullptr);
      if (row == 2) {
        KivDatasetAcceptChanges(made);
      }
    }
    KivDelta* net = nullptr;
    KivDatasetMakeDelta(made, &net);
    delta.reset(net);
    KivCursor* first = nullptr;
    KivCursorNew(made, &first);
    KivCursorFirst(first);
    cursor.reset(first);
  }
  static const RealRows& Get() {
    static const RealRows rows;
    return rows;
  }
};

template <>
inline KivDataset* RealObject() {
  return RealRows::Get().dataset.get();
}

template <>
inline KivDelta* RealObject() {
  return RealRows::Get().delta.get();
}

template <>
inline KivFilter* RealObject() {
  static const auto filter = [] {
    KivFilter* made = nullptr;
    KivFilterNew(RealObject<KivDataset>(), "fo < 0 or fa > 1", KIV_ZERO_ENDED, nullptr, 0, nullptr, 0, &made);
    return std::unique_ptr<KivFilter, decltype(KivFilterFree)*>(made, KivFilterFree);
  }();
  return filter.get();
}

template <>
inline KivExpression* RealObject() {
  static const auto expression = [] {
    KivExpression* made = nullptr;
    KivExpressionNew(RealObject<KivDataset>(), "Upper(Coalesce(fi, 'nimic'))", KIV_ZERO_ENDED, nullptr, 0, nullptr, 0,
                     &made);
    return std::unique_ptr<KivExpression, decltype(KivExpressionFree)*>(made, KivExpressionFree);
  }();
  return expression.get();
}

template <>
inline KivAggregate* RealObject() {
  static const auto aggregate = [] {
    KivAggregate* made = nullptr;
    KivAggregateNew(RealObject<KivDataset>(), "sum(fo)", KIV_ZERO_ENDED, "fa", KIV_ZERO_ENDED, &made);
    return std::unique_ptr<KivAggregate, decltype(KivAggregateFree)*>(made, KivAggregateFree);
  }();
  return aggregate.get();
}

template <>
inline KivCursor* RealObject() {
  return RealRows::Get().cursor.get();
}

/// Frees what a function has made.
inline void FreeObject(KivAVLIndex* index) {
  KivAVLIndexDestroy(index);
}
inline void FreeObject(KivDataset* dataset) {
  KivDatasetFree(dataset);
}
inline void FreeObject(KivDelta* delta) {
  KivDeltaFree(delta);
}
inline void FreeObject(KivFilter* filter) {
  KivFilterFree(filter);
}
inline void FreeObject(KivExpression* expression) {
  KivExpressionFree(expression);
}
inline void FreeObject(KivAggregate* aggregate) {
  KivAggregateFree(aggregate);
}
inline void FreeObject(KivCursor* cursor) {
  KivCursorFree(cursor);
}
