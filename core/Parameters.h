#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// Splits a program's parameters at runs of blanks and tabs. Between double quotes these are letters like any other,
/// and two double quotes in a row are one; a pair with nothing between them is an empty parameter. What a missing
/// closing quote leaves open goes to the end. Nothing else has a meaning of its own: a backslash is a backslash.
///
///     SplitParameters(R"(-o "Raport anual.pdf" a""b)")   // "-o", "Raport anual.pdf", "ab"
StringList SplitParameters(TextView parameters);

}  // namespace kiv
