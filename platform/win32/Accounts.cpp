#include "platform/Accounts.h"

#include <windows.h>

#include <array>
#include <string>

#include "platform/Handle.h"
#include "platform/Paths.h"
#include "platform/ZeroInText.h"

namespace kiv::platform {
namespace {

HANDLE AsHandle(std::intptr_t handle) noexcept {
  return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

/// The text as the system's wide calls take it.
std::wstring Wide(TextView operation, TextView text) {
  if (HasZero(text)) {
    throw SystemError(operation, ERROR_INVALID_PARAMETER);  // the system would take what is before the zero
  }
  return PathFromText(text).native();
}

/// Takes over what a call stored if it went well, and throws if it did not.
KernelHandle Owned(BOOL succeeded, HANDLE handle, TextView context) {
  const SystemStatus status = succeeded != 0 ? SystemStatus() : LastStatus();
  status.OrThrow(context);
  return KernelHandle(reinterpret_cast<std::intptr_t>(handle));
}

}  // namespace

void Accounts::EnablePrivilege(TextView name) const {
  const Text context = "SetPriviledgeForCurrentProcess: " + Text(name);
  const std::wstring wideName = Wide(context, name);
  const HANDLE opened = OpenProcess(PROCESS_ALL_ACCESS, FALSE, GetCurrentProcessId());
  const KernelHandle process = Owned(opened != nullptr, opened, context);
  HANDLE tokenHandle = nullptr;
  const BOOL gotToken = OpenProcessToken(AsHandle(process.Get()), TOKEN_WRITE | TOKEN_QUERY, &tokenHandle);
  const KernelHandle token = Owned(gotToken, tokenHandle, context);

  TOKEN_PRIVILEGES wanted{};
  wanted.PrivilegeCount = 1;
  wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  const BOOL known = LookupPrivilegeValueW(nullptr, wideName.c_str(), &wanted.Privileges[0].Luid);
  (known != 0 ? SystemStatus() : LastStatus()).OrThrow(context);

  alignas(TOKEN_PRIVILEGES) std::array<std::uint8_t, 16'400> before{};
  DWORD length = 0;
  const BOOL adjusted = AdjustTokenPrivileges(AsHandle(token.Get()), FALSE, &wanted, static_cast<DWORD>(before.size()),
                                              reinterpret_cast<TOKEN_PRIVILEGES*>(before.data()), &length);
  (adjusted != 0 ? SystemStatus() : LastStatus()).OrThrow(context);
}

Handle Accounts::LogOn(TextView user, TextView domain, TextView password, std::uint32_t type) const {
  const Text context = "CreateLogOnToken: " + Text(domain) + "\\" + Text(user);
  const std::wstring wideUser = Wide(context, user);
  const std::wstring wideDomain = Wide(context, domain);
  std::wstring widePassword = Wide(context, password);
  HANDLE token = nullptr;
  const BOOL done =
      LogonUserW(wideUser.c_str(), wideDomain.c_str(), widePassword.c_str(), type, LOGON32_PROVIDER_DEFAULT, &token);
  const SystemStatus status = done != 0 ? SystemStatus() : LastStatus();
  SecureZeroMemory(widePassword.data(), widePassword.size() * sizeof(wchar_t));
  status.OrThrow(context);
  return reinterpret_cast<Handle>(token);
}

void Accounts::StartAs(TextView program, TextView commandLine, Handle token) const {
  const Text context = "StartProgramAsUser: " + Text(program);
  const std::wstring file = Wide(context, program);
  std::wstring line = Wide(context, commandLine);
  std::wstring desktop = L"winsta0\\default";
  STARTUPINFOW startUp{};
  startUp.cb = sizeof startUp;
  startUp.lpDesktop = desktop.data();
  PROCESS_INFORMATION started{};
  const BOOL done = CreateProcessAsUserW(AsHandle(static_cast<std::intptr_t>(token)), file.c_str(), line.data(),
                                         nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startUp, &started);
  (done != 0 ? SystemStatus() : LastStatus()).OrThrow(context);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
}

}  // namespace kiv::platform
