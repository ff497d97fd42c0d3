// Every identifier check gives the plain rule's verdict on any bytes. None throws, but for the one that is documented
// to (the others are noexcept, so that an exception would end the fuzzer). The explanations agree with them, and a
// check digit that they want is right. The helpers around them never throw on bad input.
#include <algorithm>
#include <optional>

#include "fuzz/Property.h"
#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "kivtools/WinUtil/FiscalCode.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "tests/WinUtil/CodeFaultRules.h"
#include "tests/WinUtil/IdentifierRules.h"

namespace {

static_assert(noexcept(kiv::TestCNP("")) && noexcept(kiv::TestCodFiscal("")));
static_assert(noexcept(kiv::ValideazaIBAN("")) && noexcept(kiv::EsteIBAN("")));

std::optional<bool> LocalityVerdict(kiv::TextView text) {
  try {
    return kiv::ValideazaSIRUTA(text);
  } catch (const kiv::ConversionError&) {
    return std::nullopt;
  }
}

void CheckPersonalCode(kiv::TextView text) {
  const bool valid = kiv::TestCNP(text);
  REQUIRE(valid == kiv::plain::TestCNP(text));
  REQUIRE((kiv::DataNasteriiDinCNP(text) == "CNP incorect") == !valid);
  REQUIRE((kiv::DataNasteriiDinCNP_scurt(text) == "CNP incorect") == !valid);
  REQUIRE(kiv::VarstaDinCNP(text) >= 0 && (valid || kiv::VarstaDinCNP(text) == 0));
  try {
    const std::int32_t year = kiv::AnulNasteriiDinCnp(text);
    REQUIRE(text.size() >= 3 && year >= -10 && year <= 2099);
  } catch (const kiv::ConversionError&) {
    REQUIRE(text.size() >= 3 && !valid);
  } catch (const kiv::Error&) {
    REQUIRE(text.size() < 3);
  }
}

void CheckAccount(kiv::TextView text) {
  REQUIRE(kiv::ValideazaIBAN(text) == kiv::plain::ValideazaIBAN(text));
  kiv::TextView trimmed = text;
  while (!trimmed.empty() && static_cast<unsigned char>(trimmed.front()) <= ' ') {
    trimmed.remove_prefix(1);
  }
  while (!trimmed.empty() && static_cast<unsigned char>(trimmed.back()) <= ' ') {
    trimmed.remove_suffix(1);
  }
  const bool letterFirst = !trimmed.empty() && ((trimmed[0] | 0x20) >= 'a' && (trimmed[0] | 0x20) <= 'z');
  REQUIRE(kiv::EsteIBAN(text) == (letterFirst && kiv::plain::ValideazaIBAN(trimmed)));
  const kiv::Text account = kiv::ExtrageIBANdinIBANCuAnalitic(text);
  REQUIRE(account.find_first_of("-.") == kiv::Text::npos && account.size() <= text.size());
  REQUIRE(kiv::EliminaCoduriDinIBAN(text).size() + 4 <= std::max<std::size_t>(text.size(), 4));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  CheckPersonalCode(text);
  CheckAccount(text);
  REQUIRE(kiv::TestCodFiscal(text) == kiv::plain::TestCodFiscal(text));
  REQUIRE(kiv::plain::FirstDisagreement(text).empty());
  REQUIRE(LocalityVerdict(text) == kiv::plain::ValideazaSIRUTA(text));
  return 0;
}
