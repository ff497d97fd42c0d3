#pragma once

#include "kivtools/Text.h"

/// Windows-1250 to Unicode and back by the library's own tables, for whole texts.
namespace kiv::windows1250 {

/// The byte that the Windows conversion gives for one UTF-16 unit: its own byte, that of a letter that looks alike, or
/// "?". Surrogates are units like any other and become "?". Example: U+00C0 gives "A", U+0218 gives "?".
unsigned char NearestByte(char16_t unit) noexcept;

/// Every byte as its character, zeros included. Example: the byte 0xFE becomes U+0163.
WideText ToWide(TextView text);

/// Every unit as its nearest byte, zeros included. Example: U+0163 becomes the byte 0xFE, U+0218 "?".
Text FromWide(std::u16string_view wide);

}  // namespace kiv::windows1250
