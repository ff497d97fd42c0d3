#pragma once

#include <filesystem>

#include "platform/Files.h"

namespace kiv::platform {

/// Whether a new file is on the disk before it takes its name. `Flushed` is what survives the loss of power; `Written`
/// is for files that can be made again, and many times faster.
enum class Durability : std::uint8_t { Flushed, Written };

/// What becomes of the file that had the name.
enum class Backup : std::uint8_t { None, Kept };

/// The name of a file that is to take another's name: that one with ".tmp-" and sixteen random digits at its end, cut
/// short where file systems would refuse it. Example: "a.kdp" gives "a.kdp.tmp-0123456789abcdef".
NativeString TemporaryName(NativeView name);

/// Makes something, as `make(SystemName)` does and tells, under a temporary name that nothing has.
template <class Make>
SystemStatus UnderTemporaryName(NativeView name, NativeString& temporary, Make&& make) {
  constexpr int kAttempts = 100;
  SystemStatus made;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    temporary = TemporaryName(name);
    made = make(SystemName(temporary));
    if (!made.IsExisting()) {
      break;
    }
  }
  return made;
}

/// A file that is written beside its name and takes it when it is whole. Whatever fails, and wherever the process or
/// the machine stops, what has the name is the old file or the new one, never a part of either.
///
///     SafeFile file;
///     file.Create(path).OrThrow("Salvare", path);
///     file.Content().Write(bytes).OrThrow("Salvare", path);
///     file.Commit().OrThrow("Salvare", path);
///
/// The new file has the old one's attributes, on POSIX its owner too where this process may give it. A file that is
/// protected from writing stays as it is. On Windows the new file has the access rights that its folder hands down.
class SafeFile {
 public:
  SafeFile() = default;
  /// Removes what was written if it was not committed.
  ~SafeFile() { Abandon(); }
  SafeFile(const SafeFile&) = delete;
  SafeFile& operator=(const SafeFile&) = delete;

  /// Makes the file to be written, under the TemporaryName of `path`. Where `path` is a symbolic
  /// link, what it leads to is what will be replaced (on Windows the link itself).
  SystemStatus Create(const std::filesystem::path& path);
  /// The same for a name in a folder, which must stay open as long as this object is used. A link is replaced itself.
  SystemStatus Create(const Folder& at, const std::filesystem::path& name);

  /// What is being written.
  [[nodiscard]] File& Content() noexcept { return content_; }

  /// Gives the file its name. With a backup the old file keeps a name of its own, `path` with ".bak" at its end, which
  /// asks for a file system with hard links. After a failure the old file is there as before, except where the failure
  /// is that of the very last step, the flush of the folder: then the new one is, but may not survive the loss of
  /// power.
  SystemStatus Commit(Durability durability = Durability::Flushed, Backup backup = Backup::None);

 private:
  SystemStatus KeepAttributes();
  SystemStatus KeepBackup();
  void Abandon() noexcept;

  Folder parent_;
  const Folder* at_ = nullptr;
  std::filesystem::path name_;
  NativeString temporary_;
  File content_;
  EntryInfo old_;
  bool replaces_ = false;
  bool pending_ = false;
};

}  // namespace kiv::platform
