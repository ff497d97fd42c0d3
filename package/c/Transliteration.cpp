#include "kivtools/c/Transliteration.h"

#include "kivtools/WinUtil/Transliteration.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivRoToEn(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RoToEn(TextArgument(text, length, "KivRoToEn: text")); });
}

KivLength KivRoText(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RoText(TextArgument(text, length, "KivRoText: text")); });
}

KivLength KivCharReplace(const char* text, size_t length, char from, char to, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::CharReplace(TextArgument(text, length, "KivCharReplace: text"), from, to); });
}

KivLength KivMaskReplace(const char* mask, size_t length, const char* const* pairs, const size_t* lengths, size_t count,
                         char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::MaskReplace(TextArgument(mask, length, "KivMaskReplace: mask"),
                            ListArgument(pairs, lengths, count, "KivMaskReplace: pairs"));
  });
}

}  // extern "C"
