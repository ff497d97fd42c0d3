#include "kivtools/c/FiscalCode.h"

#include "kivtools/WinUtil/FiscalCode.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivTestCodFiscal(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::TestCodFiscal(KIV_TEXT(code, length)); });
}

}  // extern "C"
