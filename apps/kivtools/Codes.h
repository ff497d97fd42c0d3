#pragma once

#include <string>
#include <string_view>

namespace kivtools {

/// The code without what people put between its characters so that it reads better: blanks anywhere, and a dash that
/// has a character on both sides. The one rule for all commands. Examples: " 1-800101-221144 " gives "1800101221144";
/// "-123" and "12--3" stay.
std::string WithoutGaps(std::string_view code);

/// Whether the code may have such gaps: nearly none does, and files have codes by the million. Examples: true for
/// "12 3" and "-123", false for "123".
bool MayHaveGaps(std::string_view code) noexcept;

/// The code without the "RO" of a VAT payer, in capitals or not, and without the blanks after it.
/// Examples: "RO 123" and "ro123" give "123"; "DE123" stays.
std::string_view WithoutRo(std::string_view code) noexcept;

/// Whether the code begins with that "RO" and a digit after it. Example: true for "RO123".
bool BeginsWithRo(std::string_view code) noexcept;

/// Whether two capitals other than "RO" say that the code is another country's. Example: true for "DE123".
bool IsForeign(std::string_view code) noexcept;

/// Whether a predicate says yes to the code as it is written or, where it has gaps, without them. `dropRo` takes the
/// "RO" off before.
template <class Predicate>
bool SaysYes(const Predicate& predicate, std::string_view code, bool dropRo) {
  if (predicate(dropRo ? WithoutRo(code) : code)) {
    return true;
  }
  if (!MayHaveGaps(code)) {
    return false;
  }
  const std::string plain = WithoutGaps(code);
  return plain != code && predicate(dropRo ? WithoutRo(plain) : std::string_view(plain));
}

}  // namespace kivtools
