/**
 * @file
 * Starting and ending other programs, also under another account. See kivtools/WinUtil/Processes.h for what the
 * operations do on each system.
 */
#ifndef KIVTOOLS_C_PROCESSES_H
#define KIVTOOLS_C_PROCESSES_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts a program by its path and stores its process handle, which is the caller's: on POSIX the process number. Fails
 * with KIV_ERROR_SYSTEM where it cannot be started. Example: 0 for "C:\\App\\x.exe" and "raport.txt".
 */
KIV_API KivStatus KivStartProgram(const char* program, size_t programLength, const char* parameters,
                                  size_t parametersLength, uintptr_t* process);

/**
 * Ends a process with exit code 999 (killed on POSIX): 1 where the system did so, 0 for an invalid handle and a process
 * that had ended before. Never fails. Example: 0 for the handle 0.
 */
KIV_API KivAnswer KivTerminateProgram(uintptr_t process);

/**
 * Switches a privilege of the current process on. Fails with KIV_ERROR_SYSTEM for an unknown name and always on POSIX.
 * Example: 0 for "SeShutdownPrivilege".
 */
KIV_API KivStatus KivSetPriviledgeForCurrentProcess(const char* name, size_t length);

/**
 * Logs a user on, with the system's number for the type of logon, and stores the access token, which the caller closes.
 * An empty domain is this machine's. Fails with KIV_ERROR_SYSTEM where the system refuses and always on POSIX.
 * Example: -8 for a wrong password.
 */
KIV_API KivStatus KivCreateLogOnToken(const char* user, size_t userLength, const char* domain, size_t domainLength,
                                      const char* password, size_t passwordLength, uint32_t logonType,
                                      uintptr_t* token);

/**
 * Starts a program as a token's user; its command line is passed on as it is. Fails with KIV_ERROR_SYSTEM where a
 * privilege is unknown or the program cannot be started, and always on POSIX. Example: -8 on Linux.
 */
KIV_API KivStatus KivStartProgramAsUser(const char* program, size_t programLength, const char* commandLine,
                                        size_t commandLineLength, uintptr_t token);

#ifdef __cplusplus
}
#endif

#endif
