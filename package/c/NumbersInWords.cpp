#include "kivtools/c/NumbersInWords.h"

#include "kivtools/WinUtil/NumbersInWords.h"
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

}  // extern "C"
