#pragma once

#include <cstdint>
#include <string_view>

namespace kivtools {

/// The number that Windows gives a code page, from that number or a usual name in any case: "65001" or "utf-8",
/// "windows-1250" or "cp1250", "iso-8859-2" or "latin2", "ibm852". Throws InputError, naming the text, for anything
/// else; whether the system knows the page is another question. Example: "UTF8" gives 65001.
std::int32_t ReadCodePage(std::string_view text);

}  // namespace kivtools
