#pragma once

#include <string>
#include <string_view>

namespace kiv::packet {

/// Appends the bytes as base64 with its padding, in one line. Example: "ab" appends "YWI=".
void AppendBase64(std::string& out, std::string_view bytes);

/// Appends what base64 text stands for; blanks and line ends between the digits do not count. False for everything else
/// that is no digit, for missing padding and for bits beyond the last byte.
bool AppendFromBase64(std::string& out, std::string_view text);

}  // namespace kiv::packet
