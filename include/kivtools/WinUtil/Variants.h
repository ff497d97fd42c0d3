/// @file
/// Loosely typed values, with a default for those that are absent.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A variant as a date and time, `defaultValue` for Null. Numbers and amounts count days, true is -1; a Text must be a
/// plain decimal number, with a point before decimals. Throws ConversionError for any other Text.
///
///     VarToDateDef(Null{}, DateTime(1))     // DateTime(1)
///     VarToDateDef(Text("45356.5"), {})     // 5 March 2024, 12:00
[[nodiscard]] KIV_API DateTime VarToDateDef(const Variant& value, DateTime defaultValue);

/// A variant as an integer, `defaultValue` for Null. Fractions round to the nearest, halves to even; true is -1; a Text
/// must be a plain decimal number. Throws ConversionError for any other Text and for a value outside 32 bits.
///
///     VarToIntDef(Null{}, 7)          // 7
///     VarToIntDef(2.5, 0)             // 2
///     VarToIntDef(Text(" -12"), 0)    // -12
[[nodiscard]] KIV_API std::int32_t VarToIntDef(const Variant& value, std::int32_t defaultValue);

}  // namespace kiv
