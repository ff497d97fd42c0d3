#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "apps/kivtools/Library.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/values/TextBuffer.h"

// How texts come from the functions of the C interface; for the sources of Library and what is built on it.
namespace kivtools {

/// Whether the text is the same in every encoding that there is here.
inline bool IsAscii(std::string_view text) noexcept {
  unsigned char bits = 0;
  for (const char byte : text) {
    bits |= static_cast<unsigned char>(byte);
  }
  return bits < 0x80;
}

template <class Function, class... Arguments>
std::string Library::LibraryText(Function* function, Arguments... arguments) const {
  std::array<char, 256> most;  // what a value gives has room in it
  const KivLength first = function(arguments..., most.data(), most.size());
  if (first < 0) {
    ThrowLastError();
  }
  if (static_cast<std::size_t>(first) < most.size()) {
    return {most.data(), static_cast<std::size_t>(first)};
  }
  std::string text(static_cast<std::size_t>(first) + 1, '\0');
  for (;;) {
    const KivLength length = function(arguments..., text.data(), text.size());
    if (length < 0) {
      ThrowLastError();
    }
    const bool whole = static_cast<std::size_t>(length) < text.size();
    text.resize(static_cast<std::size_t>(length) + (whole ? 0 : 1));
    if (whole) {
      return text;
    }
  }
}

template <class Function, class... Arguments>
void Library::AppendText(TextBuffer& out, Function* function, Arguments... arguments) const {
  std::array<char, 256> most;  // what a value gives has room in it
  const KivLength length = function(arguments..., most.data(), most.size());
  const bool whole = length >= 0 && static_cast<std::size_t>(length) < most.size();
  const std::string_view text(most.data(), whole ? static_cast<std::size_t>(length) : 0);
  if (whole && IsAscii(text)) {
    out += text;
  } else {
    out += Text(function, arguments...);  // or its refusal
  }
}

template <class Function, class... Arguments>
std::string Library::PathText(Function* function, Arguments... arguments) const {
  return PathToUtf8(LibraryText(function, arguments...));
}

template <class Function, class... Arguments>
std::string Library::Text(Function* function, Arguments... arguments) const {
  std::string text = LibraryText(function, arguments...);
  return IsAscii(text) ? text : ToUtf8(text);
}

}  // namespace kivtools
