#include "package/c/StringList.h"

#include <new>

#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivStringList* KivStringListNew(void) {
  return new (std::nothrow) KivStringList;
}

void KivStringListFree(KivStringList* list) {
  delete list;
}

KivLength KivStringListCount(const KivStringList* list) {
  return GiveLength([=] { return KIV_REQUIRED(list).items.size(); });
}

KivStatus KivStringListAdd(KivStringList* list, const char* text, size_t length) {
  return Run([=] {
    const kiv::TextView item = KIV_TEXT(text, length);
    KIV_REQUIRED(list).items.emplace_back(item);
  });
}

KivLength KivStringListItem(const KivStringList* list, size_t index, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=]() -> kiv::TextView {
    const kiv::StringList& items = KIV_REQUIRED(list).items;
    if (index >= items.size()) {
      throw kiv::ListIndexError("KivStringListItem: indicele " + std::to_string(index) + " nu exista intr-o lista de " +
                                std::to_string(items.size()));
    }
    return items[index];
  });
}

KivStatus KivStringListClear(KivStringList* list) {
  return Run([=] { KIV_REQUIRED(list).items.clear(); });
}

}  // extern "C"
