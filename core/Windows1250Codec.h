#pragma once

#include "core/Windows1250Kernels.h"
#include "kivtools/Text.h"

/// Windows-1250 to Unicode and back by the library's own tables, for whole texts.
namespace kiv::windows1250 {

/// Every byte as its character, up to the first zero. Example: the byte 0xFE becomes U+0163.
WideText ToWide(TextView text, const Kernels& kernels = BestKernels());

/// Every unit as the byte that the Windows conversion gives for it (its own, that of a similar letter, or
/// "?"), up to the first zero. Surrogates are units like any other. Example: U+0163 becomes 0xFE, U+00C0 "A", U+0218
/// "?".
Text FromWide(std::u16string_view wide, const Kernels& kernels = BestKernels());

/// As kiv::ToUtf8.
std::string ToUtf8(TextView text, DiacriticForm form, const Kernels& kernels = BestKernels());

/// As kiv::FromUtf8.
Text FromUtf8(std::string_view utf8, const Kernels& kernels = BestKernels());

}  // namespace kiv::windows1250
