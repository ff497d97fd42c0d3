#include "platform/Processes.h"

#include <windows.h>

#include <string>

#include "platform/Paths.h"
#include "platform/ZeroInText.h"

namespace kiv::platform {

SystemStatus StartProcess(TextView program, TextView parameters, TextView folder, Handle& process) {
  if (HasZero(program) || HasZero(parameters)) {
    return SystemStatus(ERROR_INVALID_PARAMETER);  // the system would take what is before the zero
  }
  const std::wstring file = PathFromText(program).native();
  // The system writes into the command line while it looks at it.
  std::wstring commandLine = L'"' + file + L"\" " + PathFromText(parameters).native();
  const std::wstring workingFolder = PathFromText(folder).native();
  STARTUPINFOW startUp{};
  startUp.cb = sizeof startUp;
  PROCESS_INFORMATION started{};
  if (CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, workingFolder.c_str(),
                     &startUp, &started) == 0) {
    return LastStatus();
  }
  CloseHandle(started.hThread);
  process = reinterpret_cast<Handle>(started.hProcess);
  return {};
}

SystemStatus EndProcess(Handle process, std::uint32_t exitCode) noexcept {
  if (process == reinterpret_cast<Handle>(INVALID_HANDLE_VALUE)) {
    return SystemStatus(ERROR_INVALID_HANDLE);  // the system would take the number for this very process
  }
  // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number in a pointer
  return TerminateProcess(reinterpret_cast<HANDLE>(process), exitCode) != 0 ? SystemStatus() : LastStatus();
}

}  // namespace kiv::platform
