#pragma once

#include "kivtools/Types.h"
#include "platform/SystemError.h"

/// Programs that run beside this one.
namespace kiv::platform {

/// Starts a program and does not wait for it. Nothing that this process has open is handed on but its standard streams.
///
/// `program` is the path of the program's file as it stands: no search takes place. `parameters` are what comes after
/// the program's name on its command line: on Windows one text that the program splits as it likes, elsewhere split
/// here (see SplitParameters). `folder` is the working folder of the new process; on POSIX an empty one stands for this
/// process's own.
///
/// Stores the handle of the process, which the caller owns: on Windows the system's, on POSIX the process number.
SystemStatus StartProcess(TextView program, TextView parameters, TextView folder, Handle& process);

/// Ends a process with an exit code (POSIX has no choice of one: there it is killed) and, on POSIX, takes its end off
/// the system's list. Fails for what is no process, or no process that still runs.
SystemStatus EndProcess(Handle process, std::uint32_t exitCode) noexcept;

}  // namespace kiv::platform
