#pragma once

#include "platform/Files.h"

namespace kiv::packet {

/// Holds other savers of a file off, in this process and in others, as long as it lives. Whoever loads the file is not
/// concerned. A file that does not exist yet nobody holds off: of two savers the second one's file stays.
class SaveLock {
 public:
  /// Whose the log beside the file may be.
  enum class Log : std::uint8_t { OfOthers, Own };

  /// Throws Error where somebody else saves the file or keeps a journal of it.
  SaveLock(const std::filesystem::path& path, TextView operation, Log log = Log::OfOthers);

  /// Lets go what a system does not replace while it is open.
  void LetReplace() noexcept;

  /// Locks the log of a journal. Throws Error where somebody else has.
  static void LockJournal(platform::File& log, const std::filesystem::path& path, TextView operation);

 private:
  platform::File file_;
  platform::File log_;
};

}  // namespace kiv::packet
