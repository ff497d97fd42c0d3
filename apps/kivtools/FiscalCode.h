#pragma once

#include <string_view>

namespace kivtools {

/// The code without the "RO" of a VAT payer, in capitals or not, and without the blanks after it. The one rule for all
/// commands. Examples: "RO 123" and "ro123" give "123"; "DE123" stays.
std::string_view WithoutRo(std::string_view code) noexcept;

/// Whether two capitals other than "RO" say that the code is another country's. Example: true for "DE123".
bool IsForeign(std::string_view code) noexcept;

}  // namespace kivtools
