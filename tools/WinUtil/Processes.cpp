#include "kivtools/WinUtil/Processes.h"

#include <array>

#include "platform/Accounts.h"
#include "platform/Paths.h"
#include "platform/Processes.h"

namespace kiv {
namespace {

/// What starting a program for somebody else may take, in the order in which it is asked for.
constexpr std::array<TextView, 27> kPrivilegesToStartAsUser = {
    "SeCreateTokenPrivilege",
    "SeAssignPrimaryTokenPrivilege",
    "SeLockMemoryPrivilege",
    "SeIncreaseQuotaPrivilege",
    "SeMachineAccountPrivilege",
    "SeTcbPrivilege",
    "SeSecurityPrivilege",
    "SeTakeOwnershipPrivilege",
    "SeLoadDriverPrivilege",
    "SeSystemProfilePrivilege",
    "SeSystemtimePrivilege",
    "SeProfileSingleProcessPrivilege",
    "SeIncreaseBasePriorityPrivilege",
    "SeCreatePagefilePrivilege",
    "SeCreatePermanentPrivilege",
    "SeBackupPrivilege",
    "SeRestorePrivilege",
    "SeShutdownPrivilege",
    "SeDebugPrivilege",
    "SeAuditPrivilege",
    "SeSystemEnvironmentPrivilege",
    "SeChangeNotifyPrivilege",
    "SeRemoteShutdownPrivilege",
    "SeUndockPrivilege",
    "SeSyncAgentPrivilege",
    "SeEnableDelegationPrivilege",
    "SeManageVolumePrivilege",
};

constexpr std::uint32_t kExitCodeOfTerminated = 999;

}  // namespace

Handle StartProgram(TextView program, TextView parameters) {
  Handle process = 0;
  platform::StartProcess(program, parameters, platform::FolderWithSeparator(program), process)
      .OrThrow("StartProgram", platform::PathFromText(program));
  return process;
}

bool TerminateProgram(Handle process) {
  return !platform::EndProcess(process, kExitCodeOfTerminated).Failed();
}

void SetPriviledgeForCurrentProcess(TextView name) {
  platform::accounts_service.Current().EnablePrivilege(name);
}

Handle CreateLogOnToken(TextView user, TextView domain, TextView password, std::uint32_t logonType) {
  const platform::Accounts& accounts = platform::accounts_service.Current();
  accounts.EnablePrivilege("SeTcbPrivilege");
  return accounts.LogOn(user, domain.empty() ? TextView(".") : domain, password, logonType);
}

void StartProgramAsUser(TextView program, TextView commandLine, Handle token) {
  const platform::Accounts& accounts = platform::accounts_service.Current();
  for (const TextView privilege : kPrivilegesToStartAsUser) {
    accounts.EnablePrivilege(privilege);
  }
  accounts.StartAs(program, commandLine, token);
}

}  // namespace kiv
