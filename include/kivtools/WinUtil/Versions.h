/// @file
/// Version numbers written as dotted text, "5.12.0.341": at most four runs of decimal digits (major, minor, release,
/// build) separated by single dots. A run may be empty or absent and is then 0.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// Takes a version apart; returns whether the text is one. Nothing but digits and dots is accepted, blanks included.
/// Parts beyond 32 bits wrap modulo 2^32. If the text is no version, the parts hold what was read before the offending
/// character. Never throws.
///
///     AnalizeazaNrVersiune(major, minor, release, build, "7.1")    // true; 7, 1, 0, 0
///     AnalizeazaNrVersiune(major, minor, release, build, "4.5x")   // false; 4, 5, 0, 0
KIV_API bool AnalizeazaNrVersiune(std::int32_t& major, std::int32_t& minor, std::int32_t& release, std::int32_t& build,
                                  TextView version) noexcept;

/// Equivalent to the result of AnalizeazaNrVersiune. Example: "1.2.3." and "" are valid, "1.2.3.4." is not.
[[nodiscard]] KIV_API bool NumarulDeVersiuneEsteValid(TextView version) noexcept;

/// The difference of the first parts that differ, negative, 0 or positive as `a` is below, equal to or above `b`; it
/// wraps on overflow. Throws Error "... nu este un numar de versiune valid" for a text that is no version, `a` first.
///
///     CompareNrVersiune("1.10", "1.9")   // 1
///     CompareNrVersiune("3.0", "1.0")    // 2
[[nodiscard]] KIV_API std::int32_t CompareNrVersiune(TextView a, TextView b);

/// The "FileVersion" text of a file's version resource, "<info not available>" where it has none; see TCEVersionInfo.
/// Example: "5.12.0.341".
[[nodiscard]] KIV_API Text GetFileVersionKiv(TextView fileName);

}  // namespace kiv
