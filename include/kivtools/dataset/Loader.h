/// @file
/// Loader: many rows into a dataset at once, without a record of each.
#pragma once

#include <initializer_list>
#include <memory>
#include <span>

#include "kivtools/dataset/Dataset.h"

namespace kiv {

namespace store {
class RowLoader;
}  // namespace store

/// Adds rows that are not changes: they are Unmodified and no log knows them. The dataset shows none of them before
/// Finish(), and none at all without it; meanwhile it may be read, not edited.
///
///     Loader loader(linii);
///     while (query.Next()) loader.Add({query.Id(), query.Partener(), Null{}, query.Suma(), Null{}});
///     loader.Finish();
class Loader {
 public:
  /// Begins. Throws Error while another loader of the dataset is open.
  KIV_API explicit Loader(Dataset& dataset);
  KIV_API ~Loader();
  Loader(const Loader&) = delete;
  Loader& operator=(const Loader&) = delete;

  /// Adds a row: a value for each field in the schema's order; defaults and temporary numbers do not come of
  /// themselves. Throws as Dataset::Insert does, but for keys; the row is not added then, and the loader goes on.
  KIV_API void Add(std::span<const ValueView> values);
  /// The same from a list. Example: `loader.Add({17, "Alfa", 5_lei});`
  void Add(std::initializer_list<ValueView> values) { Add(std::span(values.begin(), values.size())); }
  /// Makes the rows part of the dataset. Throws Error, naming the key, where two rows have the same, also where they
  /// would after a roll-back: it has to be able to bring a deleted row back. No row is added then. The loader is of no
  /// more use afterwards.
  KIV_API void Finish();

 private:
  std::unique_ptr<store::RowLoader> loader_;
};

}  // namespace kiv
