#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/kivtools/Language.h"

namespace kivtools {

/// Numbers and amounts as people and files write them. Amounts are signed counts of ten-thousandths, as in
/// kiv::Currency; no binary fraction is ever made of them.

/// A number, Romanian ("1.234,50") or plain ("1234.50"), with at most `decimals` (0 to 4) decimals and an optional "-";
/// blanks around it are passed over. A "," is the decimal separator, and dots before it group the digits by three;
/// without a "," two dots or more group, and one dot stands before decimals. One dot with three digits after it that
/// could also be a group ("1.234") is refused with both readings. The one rule for all commands and the invoice file.
/// Throws InputError that says what is wrong, without the text. Example: "1.234,5" gives 12345000.
std::int64_t ReadNumber(std::string_view text, int decimals = 4);

/// An amount and what it is counted in: "RON", "EUR", or nothing where the text does not say.
struct Amount {
  std::int64_t value = 0;
  std::string_view currency;

  friend bool operator==(const Amount&, const Amount&) = default;
};

/// A number that "lei", "leu", "RON" or "EUR" in any case may stand behind. Throws as ReadNumber().
/// Example: "12,50 lei" gives 125000 and "RON".
Amount ReadAmount(std::string_view text);

/// An amount in lei, whether it says so or not. Throws as ReadNumber(), and for another currency.
std::int64_t ReadLei(std::string_view text);

/// A whole number from `least` to `most`, with an optional "-". Throws InputError that names the text, `what` it is to
/// be and the range. Example: `ReadWholeNumber("4", 1, 3, "a mode")` says "\"4\" is not a mode from 1 to 3".
std::int32_t ReadWholeNumber(std::string_view text, std::int32_t least, std::int32_t most, const Phrase& what);

/// The amount in plain notation, with as few decimals as are exact. Example: 12345000 gives "1234.5".
std::string WritePlainAmount(std::int64_t amount);

}  // namespace kivtools
