#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

#include "platform/Handle.h"
#include "platform/Paths.h"
#include "platform/ZeroInText.h"

/// Files and folders of the system. Nothing here throws: every call gives a SystemStatus, and who wants an error says
/// `.OrThrow(operation, path)`. Names are the system's own, so that no file is out of reach for its letters; on Windows
/// there is no limit to the length of a path.
namespace kiv::platform {

/// A name within a folder, or a path, as it is handed to the system: zero-terminated. It does not own the letters. A
/// text with a zero inside names nothing; the system would take it for the part before.
class SystemName {
 public:
  using Letter = std::filesystem::path::value_type;

  SystemName(const Letter* name) noexcept : name_(name) {}
  SystemName(const std::basic_string<Letter>& name) noexcept
      : name_(HasZero(name) ? name.c_str() + name.size() : name.c_str()) {}
  SystemName(const std::filesystem::path& path) noexcept : SystemName(path.native()) {}

  [[nodiscard]] const Letter* Get() const noexcept { return name_; }

 private:
  const Letter* name_;
};

/// A moment by the system's clock of files: seconds since 1 January 1970 UTC (negative before) and nanoseconds.
struct FileTime {
  std::int64_t seconds = 0;
  std::int32_t nanoseconds = 0;
  friend constexpr auto operator<=>(const FileTime&, const FileTime&) noexcept = default;
};

/// What an entry of a folder is. A link is a symbolic link, on Windows also a junction: an entry of its own, wherever
/// it leads. Devices, pipes and sockets are `Other`.
enum class EntryKind : std::uint8_t { File, Folder, Link, Other };

/// What makes two names the same file: equal numbers, as long as both are open.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;
  friend constexpr bool operator==(const FileIdentity&, const FileIdentity&) noexcept = default;
};

struct EntryInfo {
  EntryKind kind = EntryKind::Other;
  std::uint64_t size = 0;   ///< in bytes
  std::uint64_t links = 0;  ///< how many names the file has
  FileIdentity identity;
  FileTime read;
  FileTime written;
  std::uint32_t attributes = 0;  ///< POSIX: the permission bits; Windows: the file attributes
  std::uint32_t owner = 0;       ///< POSIX alone, as is the group
  std::uint32_t group = 0;
};

/// Whether a name that is a link stands for itself or for what it leads to.
enum class Links : std::uint8_t { AsThemselves, Followed };

/// An open folder, which names are relative to: what happens to the path that led there does not matter any more. In
/// one that is not open nothing has a name, and nothing gets one.
class Folder {
 public:
  Folder() noexcept = default;
  /// The process's working folder: names may be whole paths. It is the same object for all, and is not open.
  static const Folder& Working() noexcept;

  /// How many folders one walk of a tree may keep open. POSIX counts the open files of a process, Windows does not.
  static std::size_t MostOpen() noexcept;

  /// Opens a folder for listing and for the names in it. Fails for everything else. What was open is closed.
  SystemStatus Open(const Folder& at, SystemName name, Links links = Links::Followed) noexcept;

  [[nodiscard]] bool IsOpen() const noexcept { return handle_.IsOpen(); }
  SystemStatus Query(EntryInfo& info) const noexcept;
  SystemStatus SetTimes(FileTime read, FileTime written) noexcept;
  SystemStatus SetAttributes(const EntryInfo& like) noexcept;
  /// Puts the names in it on the disk. On Windows the file system does so by itself, and this does nothing.
  SystemStatus Flush() const noexcept;

  /// For the rest of the file layer.
  [[nodiscard]] const FileHandle& Handle() const noexcept { return handle_; }

 private:
  FileHandle handle_;
};

/// How a file is opened. Others may read, write, rename and delete it meanwhile.
enum class OpenMode : std::uint8_t {
  ReadFile,       ///< a regular file; everything else is refused, without waiting for the other side of a pipe
  ReadExclusive,  ///< the same while nobody else has it open; on POSIX, while nobody else has it locked (`flock`)
  ReadStream,     ///< whatever gives bytes: pipes and devices too
  CreateNew,      ///< a file that nothing has the name of yet; a link that leads nowhere is a name as well
  Overwrite,      ///< a file that is empty then, whether it existed or not
  Append,         ///< a file that grows at its end, whether it existed or not
};

/// An open file.
class File {
 public:
  /// Opens the file; what was open is closed. A new one gets `permissions` on POSIX, less what the process masks.
  SystemStatus Open(const Folder& at, SystemName name, OpenMode mode, std::uint32_t permissions = 0666) noexcept;
  SystemStatus Open(SystemName path, OpenMode mode) noexcept { return Open(Folder::Working(), path, mode); }
  /// Opens a regular file for reading and says what it is, with one question to the system for both.
  SystemStatus OpenToRead(const Folder& at, SystemName name, EntryInfo& info,
                          OpenMode mode = OpenMode::ReadFile) noexcept;

  [[nodiscard]] bool IsOpen() const noexcept { return handle_.IsOpen(); }

  /// Reads what there is at the file's position, as much as fits; `count` is 0 at the end only.
  SystemStatus Read(std::span<std::uint8_t> buffer, std::size_t& count) noexcept;
  /// Reads from `offset` on, until the buffer is full or the file ends; `count` is valid after a failure, too.
  SystemStatus ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer, std::size_t& count) const noexcept;
  /// Writes all bytes at the file's position.
  SystemStatus Write(std::span<const std::uint8_t> bytes) noexcept;
  /// Waits until what was written is on the disk.
  SystemStatus Flush() noexcept;
  /// Cuts the file off, or lengthens it with zeros. The position stays.
  SystemStatus Resize(std::uint64_t size) noexcept;

  /// Locks an open file as long as it stays open; others may read and write it nevertheless, but not lock it: their
  /// status says IsBusy(), and so does that of this process's other open files. Where the file system has no locks
  /// nobody is held off.
  SystemStatus Lock() noexcept;
  /// Whether an open file can be replaced by another one, as POSIX does; Windows wants it closed.
  static bool IsReplacedWhileOpen() noexcept;

  SystemStatus Query(EntryInfo& info) const noexcept;
  SystemStatus SetTimes(FileTime read, FileTime written) noexcept;
  /// Gives it the attributes of another entry, and on POSIX its owner where this process may.
  SystemStatus SetAttributes(const EntryInfo& like) noexcept;

  /// Closes now: some file systems tell only then that bytes could not be written.
  SystemStatus Close() noexcept { return handle_.Close(); }

  /// For the rest of the file layer.
  [[nodiscard]] const FileHandle& Handle() const noexcept { return handle_; }

 private:
  FileHandle handle_;
};

/// What has a name in the folder.
SystemStatus Query(const Folder& at, SystemName name, Links links, EntryInfo& info) noexcept;

/// Whether an entry is protected from writing: by its attribute on Windows, by the lack of every right to write on
/// POSIX.
bool IsProtected(const EntryInfo& info) noexcept;

/// Whether an entry may be replaced by a file: folders, devices, pipes and what is protected from writing may not.
SystemStatus WhyNotReplaced(const EntryInfo& info) noexcept;

/// Whether a name may be taken from another file.
enum class Existing : std::uint8_t { Refused, Replaced };

/// Gives an entry another name, in another folder of the same volume if need be. A replaced file is there until the new
/// one has its name: nobody ever sees neither, and after a failure both are what they were.
SystemStatus Rename(const Folder& from, SystemName name, const Folder& to, SystemName newName,
                    Existing existing) noexcept;

/// Gives a file one more name on the same volume. Fails where something has it.
SystemStatus MakeHardLink(const Folder& from, SystemName name, const Folder& to, SystemName newName) noexcept;

/// Removes a file or a link (what it leads to stays); folders are refused.
SystemStatus RemoveFile(const Folder& at, SystemName name) noexcept;
/// Removes an empty folder.
SystemStatus RemoveFolder(const Folder& at, SystemName name) noexcept;
/// Removes a file or a link even where its attributes protect it: they are cleared first. POSIX has none that do.
SystemStatus ForceRemoveFile(const Folder& at, SystemName name) noexcept;
/// Makes a folder, on POSIX with `permissions` less what the process masks. Fails where something has the name.
SystemStatus MakeFolder(const Folder& at, SystemName name, std::uint32_t permissions = 0777) noexcept;

}  // namespace kiv::platform
