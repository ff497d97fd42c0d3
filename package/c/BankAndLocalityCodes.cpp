#include "kivtools/c/BankAndLocalityCodes.h"

#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "package/c/Explained.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivValideazaIBAN(const char* account, size_t length) {
  return GiveAnswer([=] { return kiv::ValideazaIBAN(KIV_TEXT(account, length)); });
}

KivAnswer KivExplainValideazaIBAN(const char* account, size_t length, KivCodeFault* fault) {
  return Explain(kiv::ExplainValideazaIBAN, account, length, "account", fault);
}

KivAnswer KivEsteIBAN(const char* text, size_t length) {
  return GiveAnswer([=] { return kiv::EsteIBAN(KIV_TEXT(text, length)); });
}

KivAnswer KivExplainEsteIBAN(const char* text, size_t length, KivCodeFault* fault) {
  return Explain(kiv::ExplainEsteIBAN, text, length, "text", fault);
}

KivLength KivExtrageIBANdinIBANCuAnalitic(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::ExtrageIBANdinIBANCuAnalitic(KIV_TEXT(text, length)); });
}

KivLength KivEliminaCoduriDinIBAN(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::EliminaCoduriDinIBAN(KIV_TEXT(text, length)); });
}

KivAnswer KivValideazaSIRUTA(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::ValideazaSIRUTA(KIV_TEXT(code, length)); });
}

KivAnswer KivExplainValideazaSIRUTA(const char* code, size_t length, KivCodeFault* fault) {
  return Explain(kiv::ExplainValideazaSIRUTA, code, length, "code", fault);
}

}  // extern "C"
