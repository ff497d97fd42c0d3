/// @file
/// Small general helpers: splitting, a textual hash, the cleaning of paths, and three on integers.
///
/// All operations are pure: they need no Initialize() and may be called from any thread.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// The pieces between separators, at most `limit` of them and at least one; the last holds the unsplit rest, separators
/// included. `separators` is a set of characters, each of which separates by itself. Separators in a row give empty
/// pieces, an empty text gives one empty piece, a limit of 1 or less the whole text. Takes linear time.
///
///     Explode(",;", "a,b;;c", 10)   // "a", "b", "", "c"
///     Explode(",", "a,b,,c", 2)     // "a", "b,,c"
[[nodiscard]] KIV_API StringList Explode(TextView separators, TextView text, std::int32_t limit);

/// Appends the pieces between separators to a list, which is not cleared first; empty pieces are left out. `separators`
/// is a set of characters. Takes linear time. If it throws for want of memory, the list holds what it held before.
///
///     SplitTextOnSeparator("a,b,,c", ",", list);   // appends "a", "b", "c"
KIV_API void SplitTextOnSeparator(TextView text, TextView separators, StringList& list);

/// A short hash of a text as a decimal number from 0 to 1073741823: the character at position i, from 1, is shifted
/// left by i modulo 23 bits, and all are combined by exclusive or. Not for security. Never throws but for memory.
///
///     StringHash("A")   // "130"
[[nodiscard]] KIV_API Text StringHash(TextView text);

/// The path with every run of backslashes shrunk to one, the first two characters set aside as they are, so that a
/// network path keeps its leading pair. It cleans text: backslashes are meant on every system.
///
///     RemoveDualSlshPath(R"(\\srv\\dir\\\file)")   // \\srv\dir\file
[[nodiscard]] KIV_API Text RemoveDualSlshPath(TextView path);

/// The quarter of a month, 1 to 4; -1 for what is no month from 1 to 12. Example: `TrimestruLuna(4)` is 2.
[[nodiscard]] KIV_API std::int32_t TrimestruLuna(std::int32_t month);

/// The larger of two integers. Example: `MaxInt(2, 3)` is 3.
[[nodiscard]] constexpr std::int32_t MaxInt(std::int32_t a, std::int32_t b) noexcept {
  return a < b ? b : a;
}

/// The smaller of two integers. Example: `MinInt(2, 3)` is 2.
[[nodiscard]] constexpr std::int32_t MinInt(std::int32_t a, std::int32_t b) noexcept {
  return a < b ? a : b;
}

}  // namespace kiv
