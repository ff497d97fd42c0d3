#pragma once

#include <string>
#include <string_view>

namespace kivtools {

/// A wide text of the system as UTF-8; U+FFFD for half a surrogate pair.
std::string Utf8FromWide(std::wstring_view wide);

}  // namespace kivtools
