#pragma once

#include <algorithm>
#include <string>

#include "apps/kivtools/Library.h"
#include "apps/kivtools/system/Paths.h"

// How texts come from the functions of the C interface; for the sources of Library and what is built on it.
namespace kivtools {

template <class Function, class... Arguments>
std::string Library::LibraryText(Function* function, Arguments... arguments) const {
  std::string text(256, '\0');
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
  const bool ascii = std::all_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) == 0; });
  return ascii ? text : ToUtf8(text);
}

}  // namespace kivtools
