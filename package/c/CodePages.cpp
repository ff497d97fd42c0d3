#include "kivtools/c/CodePages.h"

#include "kivtools/WideTools/CodePages.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivStringToWideString(const char* text, size_t length, int32_t codePage, uint16_t* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StringToWideString(KIV_TEXT(text, length), codePage); });
}

KivLength KivWideStringToString(const uint16_t* wide, size_t length, int32_t codePage, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::WideStringToString(KIV_WIDE(wide, length), codePage); });
}

KivAnswer KivIsWinOsUnicode(void) {
  return GiveAnswer([] { return kiv::IsWinOsUnicode(); });
}

KivLength KivUpCaseAsCodePage(const char* text, size_t length, int32_t codePage, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::UpCaseAsCodePage(KIV_TEXT(text, length), codePage); });
}

KivAnswer KivPage1250Ok(void) {
  return kiv::page_1250_ok ? 1 : 0;
}

int32_t KivPage1250Replace(void) {
  return kiv::page_1250_replace;
}

}  // extern "C"
