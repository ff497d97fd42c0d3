#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "apps/kivtools/InputError.h"

namespace kivtools {

/// A value as a message shows it: in quotes, what would disturb a terminal as \xNN, values longer than `most` bytes
/// cut with "...". Example: `Shown("a\tb")` is "\"a\\x09b\"".
std::string Shown(std::string_view value, std::size_t most = 60);

/// The name of a file as a message shows it: as it is, or as Shown where it would disturb a terminal.
std::string ShownName(std::string_view name);

/// What `read` makes of a value. What it throws says what is wrong without the value, which is put before it here.
/// Example: `ReadValue("x", ReadAmount)` throws InputError "\"x\" is not an amount ...".
template <class Read>
auto ReadValue(std::string_view value, const Read& read) {
  try {
    return read(value);
  } catch (const InputError& error) {
    throw InputError(AsItIs(Shown(value) + " " + error.what()));
  }
}

/// Why a text cannot be printed as it is: null if it can, else "is not UTF-8" or "has a control character". Line feeds
/// pass where `lines` is true.
const Phrase* WhyNotPrintable(std::string_view text, bool lines = false);

/// A fault on a line of a file. Example: "a.csv:9: field 1: ...".
Said AtLine(const std::string& shownName, std::uint64_t line, std::string_view fault);
/// What has to be given and is not.
Said IsMissing(std::string_view what);

}  // namespace kivtools
