#pragma once

#include <string>
#include <string_view>

namespace kivtools {

/// The text as a JSON string; U+FFFD stands for bytes that are not UTF-8. Example: `JsonString("a\"b")` is
/// "\"a\\\"b\"".
std::string JsonString(std::string_view text);

}  // namespace kivtools
