#include <algorithm>

#include "kivtools/Host.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "kivtools/WinUtil/Floppy.h"
#include "kivtools/WinUtil/Paths.h"
#include "platform/Diskettes.h"
#include "platform/Paths.h"
#include "tools/WinUtil/OwnFile.h"

namespace kiv {
namespace {

using host::DialogAnswer;
using host::DialogButtons;
using host::DialogKind;
using platform::Links;

constexpr std::int64_t kPackedBeyond = 1'258'291;  // 1.2 MiB
constexpr std::int64_t kCapacity = 1'415'577;      // 1.35 MiB

constexpr TextView kInsert = "Introduceti o discheta in unitate.";
constexpr TextView kNoDiskette =
    "Nu exista nici o discheta in unitate.\r\n"
    "Introduceti o discheta in unitate si apasati \r\n"
    "butonul \"OK\" pentru a continua.";
constexpr TextView kUnreadable =
    "Discheta din unitate este defecta sau nu este formatata. \r\n"
    "Introduceti in unitate o discheta noua si apasati butonul \"OK\" \r\n"
    "pentru a continua.";
constexpr TextView kHasData = "Discheta contine date. Doriti sa stergeti datele existente si sa copiati peste?";
constexpr TextView kAnother = "Va rugam introduceti in unitate o alta discheta sau apasati \"Renunt\"";
constexpr TextView kDone = "Copierea pe discheta s-a finalizat cu succes.";

constexpr auto kTooLarge = "Nu pot copia pe discheta; Dimensiunea fisierelor depaseste capacitatea totala a dischetei!";
constexpr auto kTooLargePacked =
    "Nu pot copia pe discheta; Fisierele specificate sunt prea mari pentru a fi copiate pe o singura discheta, chiar "
    "daca am incercat sa le arhivez (sa le fac ZIP)";
constexpr auto kNotWritten = "Copierea pe discheta a esuat. Discheta este protejata la scriere sau este defecta.";
constexpr auto kDiffers =
    "Copierea pe discheta a esuat. Discheta este defecta - inlocuiti discheta si incercati inca o data!";

DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) {
  return host::Current().GetDialogs().Ask(kind, text, buttons);
}

/// Whether the user wants to go on.
bool Confirms(DialogKind kind, TextView text) {
  return Ask(kind, text, DialogButtons::OkCancel) == DialogAnswer::Ok;
}

void Tell(DialogKind kind, TextView text) {
  static_cast<void>(Ask(kind, text, DialogButtons::Ok));
}

std::int64_t SizeOf(const StringList& files) {
  std::int64_t total = 0;
  for (const Text& file : files) {
    total += DimensiuneFisier(file);
  }
  return total;
}

bool IsOnDiskette(const Text& path) {
  return FileExists(path, Links::AsThemselves);
}

/// Throws where a source is what the destination names, or cannot be asked any more: the destination is to be deleted.
void RequireNoSource(const StringList& sources, const Text& destination) {
  for (const Text& source : sources) {
    if (WouldTakeAway(destination, source)) {
      throw Error("Nu pot deschide " + source);
    }
  }
}

/// Reads a copy back from the diskette and throws unless it is the source, byte by byte.
void Verify(const Text& source, const Text& copy) {
  const OwnFile readBack(GetNewTempFileName("test", "bin"));
  if (!IsOnDiskette(copy)) {
    throw Error(kNotWritten);
  }
  CopyNoBuffering(copy, readBack.Path());
  if (!FileExists(readBack.Path(), Links::Followed)) {
    throw Error(kNotWritten);
  }
  // A comparison ends with the source: one that has become shorter meanwhile would pass for the same.
  const bool same = ComparaFisiere(source, readBack.Path());
  if (!same || DimensiuneFisier(source) != DimensiuneFisier(readBack.Path())) {
    throw Error(kDiffers);
  }
}

/// One copy with its dialogs, once the files are known to fit.
class DisketteCopy {
 public:
  DisketteCopy(const StringList& sources, const StringList& destinations) : sources_(sources), names_(destinations) {
    for (const Text& destination : destinations) {
      paths_.push_back(platform::diskettes_service.Current().PathOf(destination));
    }
  }

  void Run() {
    if (!Confirms(DialogKind::Information, kInsert)) {
      return;
    }
    while (TryDiskette()) {
    }
  }

 private:
  /// Whether another diskette is to be tried.
  bool TryDiskette() {
    switch (StareFloppy()) {
      case nuExista:
        return Confirms(DialogKind::Warning, kNoDiskette);
      case existaNeformatat:
        return Confirms(DialogKind::Warning, kUnreadable);
      case existaGol:
        return true;
      case existaOk:
        break;
    }
    if (std::ranges::any_of(paths_, IsOnDiskette) &&
        Ask(DialogKind::Warning, kHasData, DialogButtons::YesNo) != DialogAnswer::Yes) {
      return Ask(DialogKind::Warning, kAnother, DialogButtons::RetryCancel) == DialogAnswer::Retry;
    }
    CopyAll();
    return false;
  }

  void CopyAll() {
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (!MakeRoom(paths_[i])) {
        Tell(DialogKind::Error, "Nu pot sterge fisierul " + names_[i] + ". Discheta este protejata la scriere.");
        return;
      }
      CopyNoBuffering(sources_[i], paths_[i]);
      Verify(sources_[i], paths_[i]);
    }
    Tell(DialogKind::Information, kDone);
  }

  [[nodiscard]] bool MakeRoom(const Text& path) const {
    if (!IsOnDiskette(path)) {
      return true;
    }
    RequireNoSource(sources_, path);
    static_cast<void>(RemoveFile(platform::Folder::Working(), platform::PathFromText(path)));
    return !IsOnDiskette(path);
  }

  const StringList& sources_;
  const StringList& names_;  ///< the destinations as the user knows them
  StringList paths_;         ///< where they really are
};

void RequireCopyable(const StringList& sources, const StringList& destinations) {
  for (const Text& source : sources) {
    if (!FileExists(source, Links::Followed)) {
      throw Error("Fisierul " + source + " nu exista!");
    }
  }
  if (sources.size() != destinations.size()) {
    throw Error("Numarul destinatiilor nu este egal cu numarul surselor");
  }
}

void CopyAsTheyAre(const StringList& sources, const StringList& destinations) {
  if (SizeOf(sources) > kCapacity) {
    throw Error(kTooLarge);
  }
  DisketteCopy(sources, destinations).Run();
}

/// The archive is the callback's work and nobody else's, so it goes away even if the callback fails half-way.
void CopyPacked(const StringList& sources, const StringList& destinations,
                const decltype(OnProcFaZipPentruDischeta)& pack) {
  Text destination;
  OwnFile archive;
  archive.Spare(sources);
  pack(sources, destinations, destination, archive.Path());
  if (archive.IsSpared()) {
    throw Error("CopiazaPeDischetaMulti: arhiva " + archive.Path() + " este una din surse");
  }
  const StringList packed = {archive.Path()};
  if (SizeOf(packed) > kCapacity) {
    throw Error(kTooLargePacked);
  }
  RequireCopyable(packed, {destination});
  CopyAsTheyAre(packed, {destination});
}

}  // namespace

stareFloppyInDrive StareFloppy() {
  switch (platform::diskettes_service.Current().VolumeError()) {
    case 0:
      return existaOk;
    case 31:    // general failure
    case 1005:  // a volume that no file system recognises
      return existaNeformatat;
    default:  // 21, the drive is not ready, and whatever else
      return nuExista;
  }
}

bool ExistaFloppy() {
  return false;
}

void CopiazaPeDischetaMulti(const StringList& sources, const StringList& destinations) {
  RequireCopyable(sources, destinations);
  const auto pack = OnProcFaZipPentruDischeta;  // the host may assign another while this one works
  if (pack && SizeOf(sources) > kPackedBeyond) {
    CopyPacked(sources, destinations, pack);
  } else {
    CopyAsTheyAre(sources, destinations);
  }
}

void CopiazaPeDischeta(TextView source, TextView destination) {
  CopiazaPeDischetaMulti({Text(source)}, {Text(destination)});
}

void SetFloppyRoot(TextView folder) {
  platform::SetDisketteFolder("SetFloppyRoot", folder);
}

}  // namespace kiv
