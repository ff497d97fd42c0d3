#pragma once

#include <vector>

#include "dataset/query/Kernels.h"
#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"

namespace kiv::query {

/// The rows for which a condition is true, in order. Throws FilterError as the Evaluator does.
std::vector<RowId> SelectRows(const Tree& tree, const store::Contents& contents, const Kernels& kernels);
std::size_t CountRows(const Tree& tree, const store::Contents& contents, const Kernels& kernels);
/// The sum of a field of numbers over these rows, null where none has a value. Throws Error where 64 bits do not hold
/// it and for a field of another type.
Value SumRows(const Tree& tree, const store::Contents& contents, std::size_t field, const Kernels& kernels);

}  // namespace kiv::query
