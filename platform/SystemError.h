#pragma once

#include <cstdint>
#include <filesystem>

#include "kivtools/Errors.h"
#include "kivtools/Types.h"

namespace kiv::platform {

/// What a system call came to: success, or the system's own code for its failure (`errno` on POSIX, `GetLastError()` on
/// Windows). A caller that carries on asks `Failed`; one that does not throws:
///
///     file.Flush().OrThrow("SafeFile", path);   // OsError: "SafeFile: /home/ana/a.kdp: No space left on device"
///
/// The code is taken when the call ends, before the texts of the error are put together.
class [[nodiscard]] SystemStatus {
 public:
  constexpr SystemStatus() noexcept = default;
  constexpr explicit SystemStatus(std::int32_t code) noexcept : code_(code) {}

  [[nodiscard]] constexpr bool Failed() const noexcept { return code_ != 0; }
  /// The system's code, 0 for success.
  [[nodiscard]] constexpr std::int32_t Code() const noexcept { return code_; }
  /// Whether the call failed because nothing has the name.
  [[nodiscard]] bool IsMissing() const noexcept;
  /// Whether the call failed because something has the name already.
  [[nodiscard]] bool IsExisting() const noexcept;
  /// Whether the call failed because somebody else has locked the file.
  [[nodiscard]] bool IsBusy() const noexcept;
  /// Whether the call failed for want of a right.
  [[nodiscard]] bool IsDenied() const noexcept;
  /// Whether the call failed because no more files may be open. Windows knows no such limit.
  [[nodiscard]] bool IsOutOfHandles() const noexcept;

  /// Throws OsError for a failure: the operation, the system's own text and the code.
  void OrThrow(TextView operation) const {
    if (Failed()) {
      Throw(operation);
    }
  }
  /// The same with the path that the operation failed on, shown as Windows-1250 ("?" for letters that it lacks).
  void OrThrow(TextView operation, const std::filesystem::path& path) const {
    if (Failed()) {
      Throw(operation, path);
    }
  }
  /// The same for what is known to have failed.
  [[noreturn]] void Throw(TextView operation) const;
  [[noreturn]] void Throw(TextView operation, const std::filesystem::path& path) const;

  friend constexpr bool operator==(SystemStatus, SystemStatus) noexcept = default;

 private:
  std::int32_t code_ = 0;
};

/// The failure of the system call that this thread has just made; never a success, not even where the system left no
/// code. To be asked right after the call, in a statement of its own or as what a member is called on: the arguments
/// beside it may make system calls too.
SystemStatus LastStatus() noexcept;

/// The system's own text for an error code. Example on POSIX: code 2 gives "No such file or directory".
Text SystemText(std::int32_t code);

/// The error for a failed system call: `context` (the operation and the value it failed on), the system's own text and
/// the code. Example on POSIX: code 2 gives "<context>: No such file or directory".
OsError SystemError(TextView context, std::int32_t code);

}  // namespace kiv::platform
