#pragma once

#include <cstdint>
#include <span>

#include "dataset/store/Store.h"

namespace kiv::store {

/// Puts rows behind the last one of a store, where nobody sees them until they are handed over.
class RowLoader {
 public:
  explicit RowLoader(Store& store);
  ~RowLoader();
  RowLoader(const RowLoader&) = delete;
  RowLoader& operator=(const RowLoader&) = delete;

  void Add(std::span<const ValueView> values);
  void Finish();

 private:
  void CheckOpen() const;

  Store& store_;
  Contents& contents_;
  std::int64_t nextTemporary_;
  bool isDone_ = false;
};

}  // namespace kiv::store
