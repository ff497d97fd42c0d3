/// @file
/// The M1 encoding, which keeps values in settings out of plain sight. It has no key and protects nothing.
#pragma once

#include "kivtools/Types.h"

namespace kiv {

/// Writes every byte of the text as four printable characters ("0" to "z"). Which of fifteen equivalent characters
/// encodes a digit is random, so the same text does not give the same result twice. May be called from several
/// threads.
///
///     EncodeM1String("A")   // for example "bGi5": four times the length; DecodeM1String gives "A" back
[[nodiscard]] KIV_API Text EncodeM1String(TextView text);

/// Turns what EncodeM1String gave back into the text. No character is refused: each stands for the digit that its code
/// has modulo five. Throws Error with the message "Fatal error 0x1A05007A" if the length is not a multiple of four.
///
///     DecodeM1String("0000")   // one byte 0
[[nodiscard]] KIV_API Text DecodeM1String(TextView encoded);

}  // namespace kiv
