#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kivtools {

/// The first `wanted` in the text at or after `from`; the text's size where there is none.
inline std::size_t FindByte(std::string_view text, char wanted, std::size_t from = 0) noexcept {
  const void* const found = from < text.size() ? std::memchr(text.data() + from, wanted, text.size() - from) : nullptr;
  return found == nullptr ? text.size() : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

/// Calls `visit(line)` for each of the lines, without their ends (LF or CR LF; the last one may lack it); returns how
/// many there were. Example: "a\r\n\nb" has the lines "a", "", "b".
template <class Visit>
std::uint64_t ForEachLine(std::string_view text, Visit visit) {
  std::uint64_t lines = 0;
  for (; !text.empty(); ++lines) {
    const std::size_t end = FindByte(text, '\n');
    visit(text.substr(0, end > 0 && text[end - 1] == '\r' ? end - 1 : end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace kivtools
