/// @file
/// Journal: every edit of a dataset in a file at once, so that a crash loses nothing that was posted.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "kivtools/Export.h"
#include "kivtools/dataset/Packet.h"

namespace kiv {

/// When what was posted is on the disk, so that it survives the loss of power. The end of the process it survives in
/// any case.
enum class JournalFlush : std::uint8_t {
  EachEdit,    ///< before the edit returns
  EachSecond,  ///< with the first edit a second or more after the last time
  Never,       ///< when the system writes it
};

/// How a journal is kept.
struct JournalOptions {
  JournalFlush flush = JournalFlush::EachEdit;
  /// How the dataset's file is saved when the journal begins, and by Save().
  SaveOptions save = {};
};

/// Writes each edit of a dataset behind the last one in a log beside the dataset's file: "linii.kdp.log" beside
/// "linii.kdp". LoadBinary does the edits of the log again, up to the last one that is there whole. An edit that cannot
/// be written is refused and has changed nothing; so are all after it until Save() works.
///
///     Dataset linii = LoadBinary("linii.kdp");   // as it was at the last edit
///     Journal journal(linii, "linii.kdp");
///     linii.Set(row, suma, 1500_lei);            // is in the log
///     journal.Save();                            // the file has it, the log is empty
///
/// Meanwhile rows cannot be loaded in bulk, the dataset is neither moved nor ended, and no other process and no
/// SaveBinary can save the file: it refuses with Error.
class Journal {
 public:
  /// Saves the dataset and begins an empty log. Throws OsError; Error while another journal keeps the file, or keeps
  /// the dataset.
  KIV_API Journal(Dataset& dataset, const std::filesystem::path& path, const JournalOptions& options = {});
  /// Ends it. What is in the log stays there for the next LoadBinary.
  KIV_API ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// Saves the dataset as SaveBinary does and empties the log. Throws OsError; edits are refused then until it works.
  KIV_API void Save();
  /// Waits until the log is on the disk. Throws OsError.
  KIV_API void Flush();
  /// The bytes of the log, by which a host decides when to save. Example: 28 when there was no edit yet.
  [[nodiscard]] KIV_API std::uint64_t Size() const noexcept;

 private:
  class Log;
  std::unique_ptr<Log> log_;
};

}  // namespace kiv
