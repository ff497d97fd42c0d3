#include "kivtools/c/FiscalCode.h"

#include "kivtools/WinUtil/FiscalCode.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivTestCodFiscal(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::TestCodFiscal(TextArgument(code, length, "KivTestCodFiscal: code")); });
}

}  // extern "C"
