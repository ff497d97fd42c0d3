#include "dataset/packet/SaveLock.h"

#include "dataset/packet/JournalFormat.h"
#include "kivtools/Errors.h"

namespace kiv::packet {
namespace {

using platform::OpenMode;
using platform::SystemStatus;

/// Opens and locks a file. Throws Error where somebody else has.
SystemStatus Lock(platform::File& file, const std::filesystem::path& path, TextView operation, TextView whyNot) {
  if (const SystemStatus opened = file.Open(path, OpenMode::ReadFile); opened.Failed()) {
    return opened;
  }
  const SystemStatus locked = file.Lock();
  if (locked.IsBusy()) {
    throw Error(Text(operation) + ": " + platform::ShownPath(path.native()) + ": " + Text(whyNot));
  }
  return locked;
}

constexpr TextView kIsKept = "alt program tine jurnalul fisierului";

}  // namespace

SaveLock::SaveLock(const std::filesystem::path& path, TextView operation, Log log) {
  // A file that is not there has no other saver yet, and what is no file is for the save itself to tell.
  if (log == Log::OfOthers) {
    static_cast<void>(Lock(log_, JournalPath(path), operation, kIsKept));
  }
  static_cast<void>(Lock(file_, path, operation, "fisierul este salvat chiar acum de alt program"));
}

void SaveLock::LetReplace() noexcept {
  if (!platform::File::IsReplacedWhileOpen()) {
    static_cast<void>(file_.Close());
  }
}

void SaveLock::LockJournal(platform::File& log, const std::filesystem::path& path, TextView operation) {
  platform::File created;
  created.Open(path, OpenMode::Append).OrThrow(operation, path);
  created.Close().OrThrow(operation, path);
  Lock(log, path, operation, kIsKept).OrThrow(operation, path);
}

}  // namespace kiv::packet
