#include "kivtools/c/System.h"

#include "kivtools/WinUtil/System.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivLogOnUserName(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::LogOnUserName(); });
}

KivAnswer KivEsteWindowsVista(void) {
  return GiveAnswer([] { return kiv::EsteWindowsVista(); });
}

KivStatus KivCopiazaTextInClipboard(const char* text, size_t length) {
  return Run([=] { kiv::CopiazaTextInClipboard(KIV_TEXT(text, length)); });
}

}  // extern "C"
