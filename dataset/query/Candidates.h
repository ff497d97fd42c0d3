#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dataset/query/Tree.h"
#include "dataset/store/Store.h"

namespace kiv::query {

/// The rows for which a condition is true, in the order of their numbers: looked for among few where the key or an
/// ordered index tells which ones, by vectors elsewhere. Throws FilterError as the Evaluator does for the first row
/// without a value.
std::vector<std::uint32_t> PassingRows(store::Store& store, const Tree& tree);

/// The rows that may pass, in order, where the key or an ordered index says that they are few; for all others the
/// condition is not true, and none of them is without a value.
std::optional<std::vector<std::uint32_t>> FewCandidates(store::Store& store, const Tree& tree);

}  // namespace kiv::query
