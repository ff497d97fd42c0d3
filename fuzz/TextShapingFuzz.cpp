// Quoting and unquoting undo each other; an amount as digits is as long as its whole digits and two decimals.
#include <algorithm>

#include "fuzz/Property.h"
#include "kivtools/WinUtil/TextShaping.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  const kiv::Text unquoted = kiv::TextDinGhilimele(text);
  REQUIRE(unquoted.size() <= text.size());
  REQUIRE(text.empty() || kiv::TextDinGhilimele(kiv::TextInGhilimele(text)) == text);
  try {
    const kiv::Text digits = kiv::StripDotExtract2CifreDupaVirgula(text);
    REQUIRE(kiv::StripDot(digits) == digits);
    const auto whole = kiv::StripDot(text.substr(0, text.find_first_of(".,")));
    REQUIRE(digits.starts_with(whole) && digits.size() <= whole.size() + 2);
  } catch (const kiv::Error&) {
    REQUIRE(std::ranges::count_if(text, [](char c) { return c == '.' || c == ','; }) > 1);
  }
  return 0;
}
