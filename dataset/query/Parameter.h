#pragma once

#include "dataset/query/Lexer.h"
#include "dataset/query/Tree.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {

/// The value of a parameter as one of the language; the tree keeps its bytes. Throws FilterError, which names `span`,
/// for what is none.
Literal LiteralOf(Tree& tree, const FilterParameter& parameter, Span span);

}  // namespace kiv::query
