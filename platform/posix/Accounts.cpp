#include "platform/Accounts.h"

#include <cerrno>

#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

[[noreturn]] void Refuse(TextView operation, TextView value) {
  throw SystemError(Text(operation) + ": " + Text(value), ENOTSUP);
}

}  // namespace

void Accounts::EnablePrivilege(TextView name) const {
  Refuse("SetPriviledgeForCurrentProcess", name);
}

Handle Accounts::LogOn(TextView user, TextView /*domain*/, TextView /*password*/, std::uint32_t /*type*/) const {
  Refuse("CreateLogOnToken", user);
}

void Accounts::StartAs(TextView program, TextView /*commandLine*/, Handle /*token*/) const {
  Refuse("StartProgramAsUser", program);
}

}  // namespace kiv::platform
