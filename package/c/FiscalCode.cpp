#include "kivtools/c/FiscalCode.h"

#include "kivtools/WinUtil/FiscalCode.h"
#include "package/c/Explained.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivTestCodFiscal(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::TestCodFiscal(KIV_TEXT(code, length)); });
}

KivAnswer KivExplainTestCodFiscal(const char* code, size_t length, KivCodeFault* fault) {
  return Explain(kiv::ExplainTestCodFiscal, code, length, "code", fault);
}

}  // extern "C"
