#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dataset/query/Evaluator.h"
#include "dataset/query/Tree.h"
#include "dataset/store/Store.h"

namespace kiv::query {

/// Where a look-up goes: a field of the row of another dataset that has a certain key. The other dataset may be gone by
/// the time that it is asked. Whoever uses one is on the thread of both datasets.
struct LookupTarget {
  std::shared_ptr<store::Followers> other;
  std::uint16_t wanted = 0;
  /// Of a wanted field that is calculated itself.
  std::shared_ptr<const Tree> tree;
  mutable std::optional<Evaluator> evaluator;
  /// The fields of the other dataset that the result depends on.
  std::vector<std::uint16_t> reads;
  /// How many look-ups go through one another from here, and how many parts are worked out for one of them.
  std::uint32_t depth = 1;
  std::size_t parts = 1;
};

/// The look-up's result for a key. `buffer` takes the bytes of a text that is new.
Fault LookUp(const LookupTarget& target, const store::Cell& key, store::Cell& out, std::string& buffer);

/// Grows with every change of other datasets that the look-ups of a tree depend on; 0 where there are none.
std::uint64_t LookupVersion(const Tree& tree) noexcept;

/// The fields that a tree reads.
std::vector<std::uint16_t> FieldsOf(const Tree& tree);

}  // namespace kiv::query
