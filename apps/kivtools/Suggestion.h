#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kivtools {

/// The name that was probably meant: the one to which the fewest letters have to be put in, left out, replaced or
/// exchanged with their neighbour, one for three letters of what is given at most. Empty where none is so near.
/// Example: "wrods" among "words" and "money" gives "words".
std::string_view Nearest(std::string_view given, std::span<const std::string_view> names);

/// That name as a message goes on with it, with `prefix` before it; nothing where there is none.
/// Example: "; did you mean --compact?".
std::string DidYouMean(std::string_view given, std::span<const std::string_view> names, std::string_view prefix = {});

}  // namespace kivtools
