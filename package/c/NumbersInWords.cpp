#include "kivtools/c/NumbersInWords.h"

#include "kivtools/WinUtil/NumbersInWords.h"
#include "kivtools/WinUtil/ReadableWords.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivInLitere(int64_t value, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::InLitere(value); });
}

KivLength KivInLitereCurrency(int64_t tenThousandths, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::InLitere(kiv::Currency::FromRaw(tenThousandths)); });
}

KivLength KivInLitereMF(int64_t tenThousandths, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::InLitereMF(kiv::Currency::FromRaw(tenThousandths)); });
}

KivLength KivInCuvinte(int64_t number, int32_t gender, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    if (gender < KIV_GENDER_MASCULINE || gender > KIV_GENDER_NEUTER) {
      throw ArgumentError("gender: valoare necunoscuta");
    }
    return kiv::InCuvinte(number, static_cast<kiv::GrammaticalGender>(gender));
  });
}

KivLength KivInCuvinteCurrency(int64_t tenThousandths, const char* currency, size_t length, char* buffer,
                               size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::InCuvinte(kiv::Currency::FromRaw(tenThousandths), kiv::CurrencyNamesOf(KIV_TEXT(currency, length)));
  });
}

}  // extern "C"
