#pragma once

#include "dataset/query/Tree.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {

/// The tree of a text. Throws FilterError.
Tree Parse(const store::SchemaData& schema, TextView text, const FilterParameters& parameters);

}  // namespace kiv::query
