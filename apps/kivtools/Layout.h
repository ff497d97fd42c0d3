#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivtools {

/// How many columns of a terminal the UTF-8 text takes: none for combining marks, two for wide East Asian characters
/// and pictures. Example: `DisplayWidth("ȘASE")` is 4.
std::size_t DisplayWidth(std::string_view text) noexcept;

/// The text filled up with blanks to `width` columns, behind it or (PadStart) before it; longer texts as they are.
std::string PadEnd(std::string_view text, std::size_t width);
std::string PadStart(std::string_view text, std::size_t width);

/// The text in lines of at most `width` columns, broken at blanks where there are any and at line feeds always.
/// Example: `Wrap("masă de stejar", 9)` gives "masă de", "stejar".
std::vector<std::string> Wrap(std::string_view text, std::size_t width);

/// `count` copies of a piece of text. Example: `Repeat("─", 2)` is "──".
std::string Repeat(std::string_view piece, std::size_t count);

}  // namespace kivtools
