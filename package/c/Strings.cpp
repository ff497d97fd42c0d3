#include "kivtools/c/Strings.h"

#include "kivtools/WinUtil/Strings.h"
#include "package/c/Abi.h"
#include "package/c/StringList.h"

using namespace kiv::c;

extern "C" {

KivStatus KivExplode(const char* separators, size_t separatorsLength, const char* text, size_t length, int32_t limit,
                     KivStringList* pieces) {
  return Run([=] {
    kiv::StringList& result = KIV_REQUIRED(pieces).items;
    result = kiv::Explode(KIV_TEXT(separators, separatorsLength), KIV_TEXT(text, length), limit);
  });
}

KivStatus KivSplitTextOnSeparator(const char* text, size_t length, const char* separators, size_t separatorsLength,
                                  KivStringList* list) {
  return Run([=] {
    kiv::StringList& result = KIV_REQUIRED(list).items;
    kiv::SplitTextOnSeparator(KIV_TEXT(text, length), KIV_TEXT(separators, separatorsLength), result);
  });
}

KivLength KivStringHash(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StringHash(KIV_TEXT(text, length)); });
}

KivLength KivRemoveDualSlshPath(const char* path, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RemoveDualSlshPath(KIV_TEXT(path, length)); });
}

int32_t KivTrimestruLuna(int32_t month) {
  return kiv::TrimestruLuna(month);
}

int32_t KivMaxInt(int32_t a, int32_t b) {
  return kiv::MaxInt(a, b);
}

int32_t KivMinInt(int32_t a, int32_t b) {
  return kiv::MinInt(a, b);
}

}  // extern "C"
