#pragma once

#include "core/Service.h"
#include "kivtools/Types.h"

namespace kiv::platform {

/// The diskette drives. The built-in one asks the system; on POSIX a folder stands for drive A:.
class Diskettes {
 public:
  Diskettes() = default;
  virtual ~Diskettes() = default;
  Diskettes(const Diskettes&) = delete;
  Diskettes& operator=(const Diskettes&) = delete;

  /// Asks drive A: for its volume, without a box of the system's own: 0, or the failure by Windows' number for it (21
  /// for a drive without a diskette, 31 for one that cannot be read).
  [[nodiscard]] virtual std::int32_t VolumeError() const noexcept;

  /// Where a path really leads to: on POSIX "A:\x" lies in the folder that stands for the drive, everything else is
  /// what it is.
  [[nodiscard]] virtual Text PathOf(TextView path) const;

  /// Opens the system's dialog that formats a diskette, 0 for drive A:, and returns what it gives when it is closed.
  /// Throws OsError (not supported), with the operation, on POSIX.
  [[nodiscard]] virtual std::int32_t ShowFormatDialog(TextView operation, Handle owner, std::uint32_t drive) const;
};

extern constinit Service<const Diskettes> diskettes_service;

/// Names the folder that stands for drive A:, none for an empty text. Throws OsError (not supported) on Windows, with
/// the operation and the folder.
void SetDisketteFolder(TextView operation, TextView folder);

}  // namespace kiv::platform
