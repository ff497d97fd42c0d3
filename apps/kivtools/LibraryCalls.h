#pragma once

#include <algorithm>
#include <array>
#include <string>

#include "apps/kivtools/Library.h"
#include "apps/kivtools/system/Paths.h"

// How texts come from the functions of the C interface; for the sources of Library and what is built on it.
namespace kivtools {

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
std::string Library::PathText(Function* function, Arguments... arguments) const {
  return PathToUtf8(LibraryText(function, arguments...));
}

template <class Function, class... Arguments>
std::string Library::Text(Function* function, Arguments... arguments) const {
  std::string text = LibraryText(function, arguments...);
  unsigned char bits = 0;
  for (const char byte : text) {
    bits |= static_cast<unsigned char>(byte);
  }
  return bits < 0x80 ? text : ToUtf8(text);
}

}  // namespace kivtools
