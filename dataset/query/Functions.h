#pragma once

#include <span>

#include "dataset/query/Calculation.h"
#include "dataset/query/Tree.h"

namespace kiv::query {

/// What a function is called and how many arguments it takes.
struct FunctionTraits {
  Function function;
  TextView name;
  std::size_t least;
  std::size_t most;
};

/// The function of that name, case apart; null where there is none.
const FunctionTraits* FindFunction(TextView name) noexcept;
const FunctionTraits& TraitsOf(Function function) noexcept;

/// Sets the kind of a call by those of its arguments. Throws FilterError for arguments of other kinds than it takes.
void TypeCall(const Tree& tree, Node& call, std::span<const Place> arguments);

/// Works a call out. `buffer` holds the bytes of a text that is new. Null arguments have been dealt with, except those
/// of Coalesce.
Fault Call(const Node& call, std::span<const Operand> arguments, store::Cell& out, std::string& buffer);

/// The pattern of a `like`. Throws FilterError for an escape that is not one character or that ends the pattern.
Pattern MakePattern(TextView pattern, std::optional<TextView> escape, std::size_t position);
bool IsLike(TextView text, const Pattern& pattern, Collation collation) noexcept;

}  // namespace kiv::query
