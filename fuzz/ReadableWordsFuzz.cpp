// Any text is a currency or is refused; a sum of any size in any currency has words that end with one of its names, and
// the negative sum has the same behind "minus".
#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/Property.h"
#include "kivtools/WinUtil/ReadableWords.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const auto raw = data.ConsumeIntegral<std::int64_t>() / 100 * 100;  // no part of a hundredth
  const std::string text = data.ConsumeBool() ? data.ConsumeRemainingBytesAsString() : "liră,lire,f,penny,pence,m";
  kiv::CurrencyNames names;
  try {
    names = kiv::CurrencyNamesOf(text);
  } catch (const kiv::Error&) {
    return 0;
  }
  const kiv::Text words = kiv::InCuvinte(kiv::Currency::FromRaw(raw), names);
  REQUIRE(words.ends_with(names.unit.singular) || words.ends_with(names.unit.plural) ||
          words.ends_with(names.hundredth.singular) || words.ends_with(names.hundredth.plural));
  if (raw > 0) {
    REQUIRE(kiv::InCuvinte(kiv::Currency::FromRaw(-raw), names) == "minus " + words);
  }
  return 0;
}
