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
  std::size_t count = 0;
  const KivStatus status =
      Run([&count, list] { count = PointerArgument(list, "KivStringListCount: list").items.size(); });
  return status == KIV_OK ? static_cast<KivLength>(count) : status;
}

KivStatus KivStringListAdd(KivStringList* list, const char* text, size_t length) {
  return Run([=] {
    const kiv::TextView item = TextArgument(text, length, "KivStringListAdd: text");
    PointerArgument(list, "KivStringListAdd: list").items.emplace_back(item);
  });
}

KivLength KivStringListItem(const KivStringList* list, size_t index, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=]() -> kiv::TextView {
    const kiv::StringList& items = PointerArgument(list, "KivStringListItem: list").items;
    if (index >= items.size()) {
      throw kiv::ListIndexError("KivStringListItem: indicele " + std::to_string(index) + " nu exista intr-o lista de " +
                                std::to_string(items.size()));
    }
    return items[index];
  });
}

KivStatus KivStringListClear(KivStringList* list) {
  return Run([=] { PointerArgument(list, "KivStringListClear: list").items.clear(); });
}

}  // extern "C"
