#include "kivtools/c/FileLists.h"

#include "kivtools/WinUtil/FileLists.h"
#include "package/c/Abi.h"
#include "package/c/StringList.h"

using namespace kiv::c;

namespace {

void Append(KivStringList& list, kiv::StringList&& files) {
  list.items.reserve(list.items.size() + files.size());  // all that can fail
  std::move(files.begin(), files.end(), std::back_inserter(list.items));
}

}  // namespace

extern "C" {

KivStatus KivInitFileList(const char* root, size_t length, const char* const* extensions, const size_t* lengths,
                          size_t count, KivStringList* list) {
  return Run([=] {
    KivStringList& result = KIV_REQUIRED(list);
    Append(result, kiv::InitFileList(KIV_TEXT(root, length), KIV_LIST(extensions, lengths, count)));
  });
}

KivStatus KivInitFileListMaxDepth(const char* root, size_t length, const char* const* extensions, const size_t* lengths,
                                  size_t count, int32_t maxDepth, KivStringList* list) {
  return Run([=] {
    KivStringList& result = KIV_REQUIRED(list);
    Append(result, kiv::InitFileListMaxDepth(KIV_TEXT(root, length), KIV_LIST(extensions, lengths, count), maxDepth));
  });
}

}  // extern "C"
