#include "kivtools/c/PersonalNumericCode.h"

#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "package/c/Explained.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivTestCNP(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::TestCNP(KIV_TEXT(code, length)); });
}

KivAnswer KivExplainTestCNP(const char* code, size_t length, KivCodeFault* fault) {
  return Explain(kiv::ExplainTestCNP, code, length, "code", fault);
}

KivStatus KivAnulNasteriiDinCnp(const char* code, size_t length, int32_t* year) {
  return Run([=] {
    int32_t& result = KIV_REQUIRED(year);
    result = kiv::AnulNasteriiDinCnp(KIV_TEXT(code, length));
  });
}

KivLength KivDataNasteriiDinCNP(const char* code, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::DataNasteriiDinCNP(KIV_TEXT(code, length)); });
}

KivLength KivDataNasteriiDinCNP_scurt(const char* code, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::DataNasteriiDinCNP_scurt(KIV_TEXT(code, length)); });
}

KivStatus KivVarstaDinCNP(const char* code, size_t length, int32_t* age) {
  return Run([=] {
    int32_t& result = KIV_REQUIRED(age);
    result = kiv::VarstaDinCNP(KIV_TEXT(code, length));
  });
}

}  // extern "C"
