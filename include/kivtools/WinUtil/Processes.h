/// @file
/// Starting and ending other programs, also under another account.
///
/// Programs are started by their path as it is written: the folders of PATH are not searched. Texts are Windows-1250 on
/// Windows and the system's own bytes on POSIX. Everything here may be called from any thread.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// Starts a program as the current user and returns its process handle at once; closing it is the caller's duty. On
/// POSIX the handle is the process number, and an ended process stays on the system's list until TerminateProgram or
/// the caller's own waiting takes it off.
///
/// The command line is the path in double quotes, one blank and the parameters as they are. On POSIX, where a program
/// gets a list, parameters are split at blanks; double quotes hold a parameter together and two of them in a row within
/// such a parameter are one; a backslash is a letter. The new process works in the program's own folder: the path up to
/// its last separator. A path without a folder gives an empty one, which Windows may refuse and POSIX takes for the
/// caller's own. The program gets the caller's environment and, on POSIX, its standard streams and no other open file.
///
/// Throws OsError with the system's code where the program cannot be started; nothing is left open then.
///
///     Handle editor = StartProgram("C:\\App\\x.exe", "raport.txt");   // "C:\App\x.exe" raport.txt, in C:\App\ .
KIV_API Handle StartProgram(TextView program, TextView parameters);

/// Ends a process with exit code 999 (on POSIX it is killed, and its end is waited for) and returns whether the system
/// did so: false for an invalid handle and for a process that had ended before. Never throws. The handle stays the
/// caller's on Windows; on POSIX the number means nothing any more. Example: `TerminateProgram(0)` is false.
KIV_API bool TerminateProgram(Handle process);

/// Switches a privilege of the current process on, by the system's name for it. A privilege that the account does not
/// hold stays off and is no failure. Throws OsError for a name that the system does not know, where access to the
/// process is refused, and always on POSIX (not supported).
///
///     SetPriviledgeForCurrentProcess("SeShutdownPrivilege");
KIV_API void SetPriviledgeForCurrentProcess(TextView name);

/// Logs a user on and returns the access token, which the caller closes. Switches SeTcbPrivilege on first. An empty
/// domain is ".", the accounts of this machine. `logonType` is the system's number (2 interactive, 3 network, 4 batch,
/// 5 service). Throws OsError where the system refuses, and always on POSIX (not supported).
///
///     Handle token = CreateLogOnToken("ana", "", "secret", 2);
KIV_API Handle CreateLogOnToken(TextView user, TextView domain, TextView password, std::uint32_t logonType);

/// Starts a program as a token's user on the interactive desktop and does not wait for it. The command line is passed
/// on as it is: its first word should be the program. Switches on the 27 privileges that this may need, one by one.
/// Throws OsError where one has a name that the system does not know or the program cannot be started, and always on
/// POSIX (not supported).
///
///     StartProgramAsUser("C:\\App\\x.exe", "\"C:\\App\\x.exe\" /auto", token);
KIV_API void StartProgramAsUser(TextView program, TextView commandLine, Handle token);

}  // namespace kiv
