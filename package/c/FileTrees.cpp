#include "kivtools/c/FileTrees.h"

#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "kivtools/WinUtil/TreeWatcher.h"
#include "package/c/Abi.h"
#include "package/c/HostTable.h"

using namespace kiv::c;
namespace host = kiv::host;

namespace {

/// The application's label; one that nobody sees for null.
std::unique_ptr<host::Label> LabelOrNone(KivControl* label) {
  if (label == nullptr) {
    return std::make_unique<host::headless::Label>(nullptr, "");
  }
  return Lent<host::Label>(label, "label");
}

/// The application's functions as a watcher.
class LentWatcher : public kiv::TreeWatcher {
 public:
  explicit LentWatcher(const KivTreeWatcher& functions) : functions_(functions) {}

  void OnFile(kiv::TextView path, std::uint64_t size) override {
    if (functions_.file != nullptr) {
      GoOn(path, functions_.file(functions_.context, path.data(), path.size(), size));
    }
  }
  void OnFolder(kiv::TextView path) override {
    if (functions_.folder != nullptr) {
      GoOn(path, functions_.folder(functions_.context, path.data(), path.size()));
    }
  }
  void OnFailure(kiv::TextView path, const kiv::OsError& error) override {
    if (functions_.failure != nullptr) {
      const kiv::TextView message = error.what();
      GoOn(path, functions_.failure(functions_.context, path.data(), path.size(), message.data(), message.size(),
                                    error.Code()));
    }
  }

 private:
  static void GoOn(kiv::TextView path, KivStatus said) {
    if (said < 0) {
      throw kiv::Error("Oprit de aplicatie la " + kiv::Text(path));
    }
  }

  KivTreeWatcher functions_;
};

// No object with a destructor: the library could not be unloaded before each thread's end.
constinit thread_local LentWatcher* lent_watcher = nullptr;

}  // namespace

extern "C" {

KivStatus KivRecursiveCopyWithExt(const char* source, size_t sourceLength, const char* destination,
                                  size_t destinationLength, const char* const* extensions, const size_t* lengths,
                                  size_t count, KivControl* label, int32_t maxWidth) {
  return Run([=] {
    kiv::RecursiveCopyWithExt(KIV_TEXT(source, sourceLength), KIV_TEXT(destination, destinationLength),
                              KIV_LIST(extensions, lengths, count), *LabelOrNone(label), maxWidth);
  });
}

KivStatus KivRecursiveCopyWithExtSkipFolders(const char* source, size_t sourceLength, const char* destination,
                                             size_t destinationLength, const char* const* extensions,
                                             const size_t* lengths, size_t count, KivControl* label, const char* skip,
                                             size_t skipLength, int32_t maxWidth) {
  return Run([=] {
    kiv::RecursiveCopyWithExtSkipFolders(KIV_TEXT(source, sourceLength), KIV_TEXT(destination, destinationLength),
                                         KIV_LIST(extensions, lengths, count), *LabelOrNone(label),
                                         KIV_TEXT(skip, skipLength), maxWidth);
  });
}

KivStatus KivRecursiveDelete(const char* folder, size_t length) {
  return Run([=] { kiv::RecursiveDelete(KIV_TEXT(folder, length)); });
}

KivStatus KivMeasureTree(const char* root, size_t length, KivTreeSize* result) {
  return Run([=] {
    KivTreeSize& size = KIV_REQUIRED(result);
    const kiv::TreeSize measured = kiv::MeasureTree(KIV_TEXT(root, length));
    size = {measured.files, measured.folders, measured.bytes};
  });
}

KivStatus KivWatchTrees(const KivTreeWatcher* watcher) {
  return Run([=] {
    if (watcher != nullptr && watcher->size < sizeof(KivTreeWatcher)) {
      throw ArgumentError("watcher: marimea " + std::to_string(watcher->size) + " nu este a nici unei versiuni");
    }
    delete std::exchange(lent_watcher, nullptr);
    lent_watcher = watcher == nullptr ? nullptr : new LentWatcher(*watcher);
  });
}

KivStatus KivCopyNoBuffering(const char* source, size_t sourceLength, const char* destination,
                             size_t destinationLength) {
  return Run([=] { kiv::CopyNoBuffering(KIV_TEXT(source, sourceLength), KIV_TEXT(destination, destinationLength)); });
}

KivStatus KivSalveazaFisier(const char* file, size_t length, const char* content, size_t contentLength) {
  return Run([=] { kiv::SalveazaFisier(KIV_TEXT(file, length), KIV_TEXT(content, contentLength)); });
}

KivAnswer KivComparaFisiere(const char* file1, size_t length1, const char* file2, size_t length2) {
  return GiveAnswer([=] { return kiv::ComparaFisiere(KIV_TEXT(file1, length1), KIV_TEXT(file2, length2)); });
}

KivLength KivDimensiuneFisier(const char* file, size_t length) {
  return GiveLength([=] { return kiv::DimensiuneFisier(KIV_TEXT(file, length)); });
}

KivAnswer KivIsFileReadOnly(const char* file, size_t length) {
  return GiveAnswer([=] { return kiv::IsFileReadOnly(KIV_TEXT(file, length)); });
}

KivAnswer KivForceDelete(const char* file, size_t length) {
  return GiveAnswer([=] { return kiv::ForceDelete(KIV_TEXT(file, length)); });
}

KivStatus KivFileAgeByName(const char* file, size_t length, double* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::FileAgeByName(KIV_TEXT(file, length)).Days(); });
}

}  // extern "C"
