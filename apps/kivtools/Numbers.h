#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kivtools {

/// Numbers and amounts as people and files write them. Amounts are signed counts of ten-thousandths, as in
/// kiv::Currency; no binary fraction is ever made of them.

/// An amount in plain notation: an optional "-", digits, and at most four decimals after a ".". Throws InputError,
/// naming the text, for anything else and for what 64 bits do not hold. Example: "1234.56" gives 12345600.
std::int64_t ReadPlainAmount(std::string_view text);

/// A whole number from `least` to `most`, with an optional "-". Throws InputError that names the text, `what` it is to
/// be and the range. Example: `ReadWholeNumber("4", 1, 3, "a mode")` says "\"4\" is not a mode from 1 to 3".
std::int32_t ReadWholeNumber(std::string_view text, std::int32_t least, std::int32_t most, std::string_view what);

/// An amount in a file, Romanian ("1.234,50") or plain ("1234.50"), `decimals` (0 to 4) of them at most. A "," is the
/// decimal separator, and dots before it group the digits by three; without a "," two dots or more group, and one dot
/// stands before decimals. One dot with three digits after it that could also be a group ("1.234") is refused. Throws
/// InputError that says what is wrong, without the text. Example: "1.234,5" gives 12345000.
std::int64_t ReadFileAmount(std::string_view text, int decimals = 4);

/// The amount in plain notation, with as few decimals as are exact. Example: 12345000 gives "1234.5".
std::string WritePlainAmount(std::int64_t amount);

}  // namespace kivtools
