#include "kivtools/c/FileTrees.h"

#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileTrees.h"
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

KivStatus KivCopyNoBuffering(const char* source, size_t sourceLength, const char* destination,
                             size_t destinationLength) {
  return Run([=] { kiv::CopyNoBuffering(KIV_TEXT(source, sourceLength), KIV_TEXT(destination, destinationLength)); });
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
