#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// UTF-16 as the library's C interface has it: 16-bit units, a pair of them above U+FFFF.
namespace kivtools {

using Utf16 = std::vector<std::uint16_t>;
using Utf16View = std::span<const std::uint16_t>;

/// The units of the character at the front; the text must not be empty. Half a pair counts as a character.
Utf16View FirstCharacter(Utf16View wide) noexcept;

/// Throws InputError, naming the byte, for what is not UTF-8. Example: "😀" gives D83D DE00.
Utf16 Utf16FromUtf8(std::string_view utf8);

/// The reverse. Half a pair becomes U+FFFD.
std::string Utf8FromUtf16(Utf16View wide);

}  // namespace kivtools
