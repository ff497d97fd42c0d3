#include "kivtools/c/Floppy.h"

#include "kivtools/WinUtil/Floppy.h"
#include "package/c/Abi.h"

using namespace kiv::c;

/// What the application fills in.
struct KivFloppyArchive {
  kiv::Text& destination;
  kiv::Text& local;
};

namespace {

std::vector<const char*> Pointers(const kiv::StringList& texts) {
  std::vector<const char*> pointers;
  pointers.reserve(texts.size());
  for (const kiv::Text& text : texts) {
    pointers.push_back(text.c_str());
  }
  return pointers;
}

void Pack(KivPackForFloppy pack, void* data, const kiv::StringList& sources, const kiv::StringList& destinations,
          kiv::Text& destination, kiv::Text& local) {
  KivFloppyArchive archive{destination, local};
  const KivStatus status =
      pack(data, Pointers(sources).data(), Pointers(destinations).data(), sources.size(), &archive);
  if (status < 0) {
    throw kiv::Error("Aplicatia nu a putut arhiva fisierele: " + std::to_string(status));
  }
}

}  // namespace

extern "C" {

int32_t KivStareFloppy(void) {
  return static_cast<int32_t>(GiveLength([] { return kiv::StareFloppy(); }));
}

KivAnswer KivExistaFloppy(void) {
  return GiveAnswer([] { return kiv::ExistaFloppy(); });
}

KivStatus KivCopiazaPeDischetaMulti(const char* const* sources, const size_t* sourceLengths, size_t sourceCount,
                                    const char* const* destinations, const size_t* destinationLengths,
                                    size_t destinationCount) {
  return Run([=] {
    kiv::CopiazaPeDischetaMulti(KIV_LIST(sources, sourceLengths, sourceCount),
                                KIV_LIST(destinations, destinationLengths, destinationCount));
  });
}

KivStatus KivCopiazaPeDischeta(const char* source, size_t sourceLength, const char* destination,
                               size_t destinationLength) {
  return Run([=] { kiv::CopiazaPeDischeta(KIV_TEXT(source, sourceLength), KIV_TEXT(destination, destinationLength)); });
}

KivStatus KivSetFloppyRoot(const char* folder, size_t length) {
  return Run([=] { kiv::SetFloppyRoot(KIV_TEXT(folder, length)); });
}

KivStatus KivFloppyArchiveSet(KivFloppyArchive* archive, const char* destination, size_t destinationLength,
                              const char* local, size_t localLength) {
  return Run([=] {
    KivFloppyArchive& named = KIV_REQUIRED(archive);
    kiv::Text onDiskette(KIV_TEXT(destination, destinationLength));
    kiv::Text onDisk(KIV_TEXT(local, localLength));
    named.destination.swap(onDiskette);
    named.local.swap(onDisk);
  });
}

KivStatus KivSetOnProcFaZipPentruDischeta(KivPackForFloppy pack, void* data) {
  return Run([=] {
    if (pack == nullptr) {
      kiv::OnProcFaZipPentruDischeta = nullptr;
      return;
    }
    kiv::OnProcFaZipPentruDischeta = [=](const kiv::StringList& sources, const kiv::StringList& destinations,
                                         kiv::Text& destination, kiv::Text& local) {
      Pack(pack, data, sources, destinations, destination, local);
    };
  });
}

KivStatus KivFullFormatDriveA(uintptr_t owner, int32_t* result) {
  return Run([=] {
    int32_t& given = KIV_REQUIRED(result);
    given = kiv::FullFormatDriveA(owner);
  });
}

KivStatus KivFullFormatDriveB(uintptr_t owner, int32_t* result) {
  return Run([=] {
    int32_t& given = KIV_REQUIRED(result);
    given = kiv::FullFormatDriveB(owner);
  });
}

}  // extern "C"
