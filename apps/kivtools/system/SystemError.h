#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "apps/kivtools/InputError.h"

namespace kivtools {

/// The system refused a call. The message is UTF-8: what was being done and to what, the system's own text, its code.
/// Example on POSIX: with the context "a.csv: cannot be opened" and the code 2 it says
/// "a.csv: cannot be opened: No such file or directory (error 2)".
class SystemError : public InputError {
 public:
  SystemError(const Said& context, std::int32_t code);
  /// For what the standard library reports.
  SystemError(const Said& context, const std::error_code& error);

  /// The system's number: `errno` on POSIX, `GetLastError()` on Windows.
  [[nodiscard]] std::int32_t Code() const noexcept { return code_; }

 private:
  std::int32_t code_;
};

/// What a file could not be asked for.
inline Said CannotBeOpened(const std::string& name) {
  return Say({"{0}: cannot be opened", "{0}: nu se poate deschide"}, name);
}
inline Said CannotBeRead(const std::string& name) {
  return Say({"{0}: cannot be read", "{0}: nu se poate citi"}, name);
}
inline Said IsAFolder(const std::string& name) {
  return Say({"{0} is a folder", "{0} este un dosar"}, name);
}
inline Said IsNotAFile(const std::string& name) {
  return Say({"{0} is not a file", "{0} nu este un fișier"}, name);
}

}  // namespace kivtools
