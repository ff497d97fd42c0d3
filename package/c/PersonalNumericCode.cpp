#include "kivtools/c/PersonalNumericCode.h"

#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivTestCNP(const char* code, size_t length) {
  return GiveAnswer([=] { return kiv::TestCNP(TextArgument(code, length, "KivTestCNP: code")); });
}

KivStatus KivAnulNasteriiDinCnp(const char* code, size_t length, int32_t* year) {
  return Run([=] {
    int32_t& result = PointerArgument(year, "KivAnulNasteriiDinCnp: year");
    result = kiv::AnulNasteriiDinCnp(TextArgument(code, length, "KivAnulNasteriiDinCnp: code"));
  });
}

KivLength KivDataNasteriiDinCNP(const char* code, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::DataNasteriiDinCNP(TextArgument(code, length, "KivDataNasteriiDinCNP: code")); });
}

KivLength KivDataNasteriiDinCNP_scurt(const char* code, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::DataNasteriiDinCNP_scurt(TextArgument(code, length, "KivDataNasteriiDinCNP_scurt: code"));
  });
}

KivStatus KivVarstaDinCNP(const char* code, size_t length, int32_t* age) {
  return Run([=] {
    int32_t& result = PointerArgument(age, "KivVarstaDinCNP: age");
    result = kiv::VarstaDinCNP(TextArgument(code, length, "KivVarstaDinCNP: code"));
  });
}

}  // extern "C"
