#pragma once

#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {

/// The tree of a text; `own` is the name of the column that it is to be, which it cannot refer to. Throws FilterError.
Tree Parse(const store::Contents& contents, TextView text, const FilterParameters& parameters, TextView own = {});

}  // namespace kiv::query
