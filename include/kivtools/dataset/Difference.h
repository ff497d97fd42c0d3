/// @file
/// The difference of two datasets: what makes the one of the other.
#pragma once

#include <span>

#include "kivtools/dataset/Dataset.h"

namespace kiv {

/// The rows of `before` with the changes that make those of `after` of them: rows with the same key whose values differ
/// are modified, others inserted or deleted. `key` names the fields that tell rows apart; without it the key of
/// `before` does. Both have the same fields, in any order. Throws Error, naming the field, for one that the other does
/// not have or has of another type, and, naming the key, for two rows of either with the same.
///
///     const Dataset change = Difference(LoadCsv("ieri.csv"), LoadCsv("azi.csv"), std::array{Text("cont")});
///     SaveDelta(change.Changes().MakeDelta(), "de-trimis.kdp");
[[nodiscard]] KIV_API Dataset Difference(const DatasetView& before, const DatasetView& after,
                                         std::span<const Text> key = {});

}  // namespace kiv
