#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "Expect.h"
#include "core/Parameters.h"
#include "kivtools/WinUtil/Processes.h"
#include "platform/Accounts.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

TEST(SplitParameters, BlanksSeparateAndQuotesHoldTogether) {
  const struct {
    TextView parameters;
    StringList expected;
  } cases[] = {
      {"", {}},
      {" \t ", {}},
      {"a", {"a"}},
      {" a\tb  c ", {"a", "b", "c"}},
      {R"("a b" c)", {"a b", "c"}},
      {R"(x"a b"y)", {"xa by"}},
      {R"("")", {""}},
      {R"("" "")", {"", ""}},
      {R"("a""b")", {R"(a"b)"}},
      {R"(a""b)", {"ab"}},
      {R"("""")", {R"(")"}},
      {R"("left open)", {"left open"}},
      {R"(c:\dir\ \"a b\")", {R"(c:\dir\)", R"(\a b\)"}},
  };
  for (const auto& [parameters, expected] : cases) {
    EXPECT_EQ(SplitParameters(parameters), expected) << parameters;
  }
}

/// Writes down what is asked of it; refuses the privilege named `unknown`.
class RecordingAccounts : public platform::Accounts {
 public:
  void EnablePrivilege(TextView name) const override {
    if (name == unknown) {
      throw OsError(1313, "unknown privilege");
    }
    calls.emplace_back(name);
  }
  [[nodiscard]] Handle LogOn(TextView user, TextView domain, TextView password, std::uint32_t type) const override {
    calls.push_back("logon " + Text(user) + "@" + Text(domain) + ":" + Text(password) + " " + std::to_string(type));
    return 77;
  }
  void StartAs(TextView program, TextView commandLine, Handle token) const override {
    calls.push_back("start " + Text(program) + "|" + Text(commandLine) + "|" + std::to_string(token));
  }

  mutable StringList calls;
  Text unknown;

 private:
  Replacement<const platform::Accounts> inUse_{platform::accounts_service, *this};
};

TEST(Accounts, AnotherUsersProgramAsksForEveryPrivilegeInOrder) {
  RecordingAccounts accounts;
  StartProgramAsUser("p.exe", "\"p.exe\" /x", 5);
  EXPECT_THAT(accounts.calls,
              testing::ElementsAre(
                  "SeCreateTokenPrivilege", "SeAssignPrimaryTokenPrivilege", "SeLockMemoryPrivilege",
                  "SeIncreaseQuotaPrivilege", "SeMachineAccountPrivilege", "SeTcbPrivilege", "SeSecurityPrivilege",
                  "SeTakeOwnershipPrivilege", "SeLoadDriverPrivilege", "SeSystemProfilePrivilege",
                  "SeSystemtimePrivilege", "SeProfileSingleProcessPrivilege", "SeIncreaseBasePriorityPrivilege",
                  "SeCreatePagefilePrivilege", "SeCreatePermanentPrivilege", "SeBackupPrivilege", "SeRestorePrivilege",
                  "SeShutdownPrivilege", "SeDebugPrivilege", "SeAuditPrivilege", "SeSystemEnvironmentPrivilege",
                  "SeChangeNotifyPrivilege", "SeRemoteShutdownPrivilege", "SeUndockPrivilege", "SeSyncAgentPrivilege",
                  "SeEnableDelegationPrivilege", "SeManageVolumePrivilege", "start p.exe|\"p.exe\" /x|5"));
}

TEST(Accounts, AnUnknownPrivilegeStopsBeforeTheProgramStarts) {
  RecordingAccounts accounts;
  accounts.unknown = "SeLockMemoryPrivilege";
  EXPECT_THROW(StartProgramAsUser("p.exe", "", 5), OsError);
  EXPECT_THAT(accounts.calls, testing::ElementsAre("SeCreateTokenPrivilege", "SeAssignPrimaryTokenPrivilege"));
}

TEST(Accounts, LoggingOnWithoutADomainMeansThisMachine) {
  RecordingAccounts accounts;
  EXPECT_EQ(CreateLogOnToken("ana", "", "secret", 4), 77U);
  EXPECT_EQ(CreateLogOnToken("ana", "FIRMA", "", 2), 77U);
  SetPriviledgeForCurrentProcess("SeX");
  EXPECT_THAT(accounts.calls, testing::ElementsAre("SeTcbPrivilege", "logon ana@.:secret 4", "SeTcbPrivilege",
                                                   "logon ana@FIRMA: 2", "SeX"));
}

TEST(TerminateProgram, WhatIsNoProcessIsNotEnded) {
  for (const Handle none : {Handle{0}, static_cast<Handle>(-1), static_cast<Handle>(-2), Handle{0x7FFFFFF0}}) {
    EXPECT_FALSE(TerminateProgram(none)) << none;
  }
}

}  // namespace
}  // namespace kiv
