#include "kivtools/c/Transliteration.h"

#include "kivtools/WinUtil/Transliteration.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivRoToEn(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RoToEn(KIV_TEXT(text, length)); });
}

KivLength KivRoText(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RoText(KIV_TEXT(text, length)); });
}

KivLength KivCharReplace(const char* text, size_t length, char from, char to, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::CharReplace(KIV_TEXT(text, length), from, to); });
}

KivLength KivMaskReplace(const char* mask, size_t length, const char* const* pairs, const size_t* lengths, size_t count,
                         char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::MaskReplace(KIV_TEXT(mask, length), KIV_LIST(pairs, lengths, count)); });
}

}  // extern "C"
