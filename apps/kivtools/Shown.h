#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivtools {

/// A value as a message shows it: in quotes, what would disturb a terminal as \xNN, values longer than `most` bytes
/// cut with "...". Example: `Shown("a\tb")` is "\"a\\x09b\"".
std::string Shown(std::string_view value, std::size_t most = 60);

/// The name of a file as a message shows it: as it is, or as Shown where it would disturb a terminal.
std::string ShownName(std::string_view name);

/// Why a text cannot be printed as it is: nothing if it can, else "is not UTF-8" or "has a control character". Line
/// feeds pass where `lines` is true.
std::string_view WhyNotPrintable(std::string_view text, bool lines = false);

}  // namespace kivtools
