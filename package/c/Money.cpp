#include "kivtools/c/Money.h"

#include "kivtools/WideTools/ScaledNumbers.h"
#include "kivtools/WinUtil/Money.h"
#include "package/c/Abi.h"

using namespace kiv::c;
using kiv::Currency;

extern "C" {

KivLength KivCurrencyToRoStr(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::CurrencyToRoStr(Currency::FromRaw(tenThousandths), decimals); });
}

KivLength KivCurrencyToRoStrFaraSpatiu(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::CurrencyToRoStrFaraSpatiu(Currency::FromRaw(tenThousandths), decimals); });
}

KivLength KivCurrencyToRoStrRON(int64_t tenThousandths, int32_t decimals, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::CurrencyToRoStrRON(Currency::FromRaw(tenThousandths), decimals); });
}

KivStatus KivRoStrToCurrency(const char* text, size_t length, int64_t* tenThousandths) {
  return Run([=] {
    int64_t& result = KIV_REQUIRED(tenThousandths);
    result = kiv::RoStrToCurrency(KIV_TEXT(text, length)).Raw();
  });
}

KivLength KivScrieFoarteFrumos(int64_t value, int32_t kind, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::ScrieFoarteFrumos(value, kind); });
}

}  // extern "C"
