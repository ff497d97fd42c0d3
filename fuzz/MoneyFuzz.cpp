// What RoStrToCurrency accepts, written and read again, is the same amount; and it agrees with the plain rule.
#include <algorithm>
#include <optional>
#include <string>

#include "core/Numbers.h"
#include "fuzz/Property.h"
#include "kivtools/WinUtil/Money.h"

namespace {

/// The plain rule: gather the digits, then convert them; nothing where the text is refused.
std::optional<std::int64_t> Reference(kiv::TextView text) {
  kiv::Text whole;
  kiv::Text decimals;
  bool comma = false;
  for (const char c : text) {
    if (c == ',') {
      if (comma) {
        return std::nullopt;
      }
      comma = true;
    } else if (c >= '0' && c <= '9') {
      (comma ? decimals : whole).push_back(c);
    } else if (c != '-' && c != ' ' && c != '.') {
      return std::nullopt;
    }
  }
  decimals.resize(4, '0');
  try {
    const std::int64_t raw = kiv::ToInt64(whole + decimals);
    return text.starts_with('-') ? -raw : raw;
  } catch (const kiv::ConversionError&) {
    return std::nullopt;
  }
}

std::optional<std::int64_t> Read(kiv::TextView text) {
  try {
    return kiv::RoStrToCurrency(text).Raw();
  } catch (const kiv::Error&) {
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::Text text(reinterpret_cast<const char*>(bytes), size);
  const std::optional<std::int64_t> raw = Read(text);
  REQUIRE(raw == Reference(text));
  if (raw) {
    REQUIRE(Read(kiv::CurrencyToRoStr(kiv::Currency::FromRaw(*raw), 4)) == raw);
  }
  return 0;
}
