#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// The items of a delimited list: they end at `delimiter` and at blanks (the characters 1 to 32), a run of blanks
/// around a delimiter makes no item, an item may be in double quotes with quotes within doubled, a delimiter at the
/// end makes a last empty item.
///
///     SplitDelimited("5 . 3.\"20\"\"24\"", '.')   // "5", "3", "20\"24"
StringList SplitDelimited(TextView text, char delimiter);

}  // namespace kiv
