#include "kivtools/c/BankAndLocalityCodes.h"

#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivValideazaIBAN(const char* account, size_t length) {
  return GiveAnswer([=] { return kiv::ValideazaIBAN(KIV_TEXT(account, length)); });
}

KivAnswer KivEsteIBAN(const char* text, size_t length) {
  return GiveAnswer([=] { return kiv::EsteIBAN(KIV_TEXT(text, length)); });
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

}  // extern "C"
