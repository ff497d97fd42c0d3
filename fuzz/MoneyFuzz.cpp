// What RoStrToCurrency accepts, written and read again, is the same amount; and it agrees with the plain rule.
#include "fuzz/Property.h"
#include "tests/WinUtil/MoneyRule.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  const std::optional<std::int64_t> raw = kiv::ReadMoney(text);
  REQUIRE(raw == kiv::PlainReadMoney(text));
  if (raw) {
    REQUIRE(kiv::ReadMoney(kiv::CurrencyToRoStr(kiv::Currency::FromRaw(*raw), 4)) == raw);
  }
  return 0;
}
