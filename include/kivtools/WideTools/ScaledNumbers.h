/// @file
/// Scaled integers as Romanian numeric text.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// Writes an integer whose scale `kind` names; "." groups digits by three, "," comes before decimals without a blank.
/// A negative value is "-" and the text of its magnitude. Pure, safe from any thread.
///
/// | kind | value                                         | 12345678 gives |
/// |------|-----------------------------------------------|----------------|
/// | 0    | whole number                                  | "12.345.678"   |
/// | 2    | hundredths, not grouped                       | "123456,78"    |
/// | 22   | hundredths                                    | "123.456,78"   |
/// | 4    | ten-thousandths: two decimals if exact        | "1.234,5678"   |
/// | 42   | ten-thousandths, rounded half up to two       | "1.234,57"     |
/// | 422  | ten-thousandths: two decimals if exact        | "1.234,5678"   |
/// | 3    | whole number in brackets, not grouped         | "[12345678]"   |
///
/// Throws Error "Nu cunosc tipul de date (kind)(magnitude)" for any other kind.
///
///     ScrieFoarteFrumos(123456, 22)   // "1.234,56"
[[nodiscard]] KIV_API Text ScrieFoarteFrumos(std::int64_t value, std::int32_t kind);

}  // namespace kiv
