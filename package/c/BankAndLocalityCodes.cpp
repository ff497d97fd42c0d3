#include "kivtools/c/BankAndLocalityCodes.h"

#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivValideazaIBAN(const char* account, size_t length) {
  return GiveAnswer([=] { return kiv::ValideazaIBAN(TextArgument(account, length, "KivValideazaIBAN: account")); });
}

KivAnswer KivEsteIBAN(const char* text, size_t length) {
  return GiveAnswer([=] { return kiv::EsteIBAN(TextArgument(text, length, "KivEsteIBAN: text")); });
}

KivLength KivExtrageIBANdinIBANCuAnalitic(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::ExtrageIBANdinIBANCuAnalitic(TextArgument(text, length, "KivExtrageIBANdinIBANCuAnalitic: text"));
  });
}

KivLength KivEliminaCoduriDinIBAN(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::EliminaCoduriDinIBAN(TextArgument(text, length, "KivEliminaCoduriDinIBAN: text"));
  });
}

KivAnswer KivValideazaSIRUTA(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::ValideazaSIRUTA(TextArgument(code, length, "KivValideazaSIRUTA: code")); });
}

}  // extern "C"
