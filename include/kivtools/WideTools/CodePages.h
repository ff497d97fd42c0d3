/// @file
/// Text in other code pages: to UTF-16 and back through a numbered code page.
#pragma once

#include <cstdint>
#include <string_view>

#include "kivtools/Types.h"

namespace kiv {

/// True when the ten Romanian diacritics survive the way through code page 1250 and back on this machine. False until
/// Initialize() has tried it. Example: true on every current system.
extern KIV_API bool page_1250_ok;

/// The code page that is used whenever 1250 is asked for: 1250 itself or, where it does not work, the system's ANSI
/// code page. 0 until Initialize(), while code page 1250 is used as it is. Example: 1250 on every current system.
extern KIV_API std::int32_t page_1250_replace;

/// Converts a text in a numbered code page to UTF-16, up to the first zero in the result. The code page is a number of
/// Windows (1250, 1252, 852, 65001 for UTF-8, 0 for the system's ANSI code page). Bytes that mean nothing in it become
/// U+FFFD or the control character of the same number. Empty for an unknown code page; never throws for any input.
///
///     StringToWideString("\xFE""ar\xE3", 1250)   // u"ţară"
[[nodiscard]] KIV_API WideText StringToWideString(TextView text, std::int32_t codePage);

/// Converts UTF-16 to a text in a numbered code page, up to the first zero in the result. Units that the code page
/// lacks become a similar letter or "?". The result has room for one byte for each unit and one byte more: in
/// a multi-byte code page such as 65001 a text that needs more gives the empty Text. Empty also for an unknown code
/// page; never throws for any input.
///
///     WideStringToString(u"ţară", 1250)    // the four bytes FE 61 72 E3
///     WideStringToString(u"țară", 1250)    // "?ar\xE3": the code page has no comma-below letters
///     WideStringToString(u"ţ", 65001)      // the two bytes C5 A3
[[nodiscard]] KIV_API Text WideStringToString(std::u16string_view wide, std::int32_t codePage);

/// True where the operating system is of the Unicode family (every current one). The first answer is kept. Throws Error
/// on a system of an older family that has no answer: "*NU* Rulez pe Win 3.1" on the 16-bit one, "Nu am reusit sa
/// determin daca OS-ul are suport pentru Unicode sau nu" on one that is not known.
/// Example: true on Linux and on every Windows since 2000.
[[nodiscard]] KIV_API bool IsWinOsUnicode();

/// Always the empty Text, whatever the arguments: hosts rely on it. Example: `UpCaseAsCodePage("a", 1250)` is "".
[[nodiscard]] KIV_API Text UpCaseAsCodePage(TextView text, std::int32_t codePage);

}  // namespace kiv
