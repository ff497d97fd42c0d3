#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "apps/kivtools/InputError.h"

namespace kivtools {

/// The system refused a call. The message is UTF-8: what was being done and to what, the system's own text, its code.
/// Example on POSIX: `SystemError("a.csv: cannot be opened", 2)` says
/// "a.csv: cannot be opened: No such file or directory (error 2)".
class SystemError : public InputError {
 public:
  SystemError(const std::string& context, std::int32_t code);
  /// For what the standard library reports.
  SystemError(const std::string& context, const std::error_code& error);

  /// The system's number: `errno` on POSIX, `GetLastError()` on Windows.
  [[nodiscard]] std::int32_t Code() const noexcept { return code_; }

 private:
  std::int32_t code_;
};

}  // namespace kivtools
