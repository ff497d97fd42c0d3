#pragma once

#include "core/Service.h"
#include "kivtools/Types.h"

namespace kiv::platform {

/// Privileges and other people's accounts. The built-in one asks the system; on POSIX, which has neither in this form,
/// each of its operations throws OsError (not supported).
class Accounts {
 public:
  Accounts() = default;
  virtual ~Accounts() = default;
  Accounts(const Accounts&) = delete;
  Accounts& operator=(const Accounts&) = delete;

  /// Switches a privilege of this process on. One that the account does not hold stays off without a word. Throws
  /// OsError for a name that the system does not know and where the process may not be changed.
  virtual void EnablePrivilege(TextView name) const;

  /// Logs a user on and gives the token, which the caller owns. Throws OsError.
  [[nodiscard]] virtual Handle LogOn(TextView user, TextView domain, TextView password, std::uint32_t type) const;

  /// Starts a program on the interactive desktop as the token's user; its handles are closed again. Throws OsError.
  virtual void StartAs(TextView program, TextView commandLine, Handle token) const;
};

extern constinit Service<const Accounts> accounts_service;

}  // namespace kiv::platform
