/**
 * @file
 * Questions to the system and to the host.
 */
#ifndef KIVTOOLS_C_SYSTEM_H
#define KIVTOOLS_C_SYSTEM_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The user's name. Example: "ana". */
KIV_API KivLength KivLogOnUserName(char* buffer, size_t capacity);

/** Whether the operating system's major version is 6 or more. Example: 1 on Windows 10. */
KIV_API KivAnswer KivEsteWindowsVista(void);

/** Puts the text on the clipboard; fails with KIV_ERROR_SYSTEM where it cannot be opened. Example: 0. */
KIV_API KivStatus KivCopiazaTextInClipboard(const char* text, size_t length);

#ifdef __cplusplus
}
#endif

#endif
