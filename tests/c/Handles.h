#pragma once

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
