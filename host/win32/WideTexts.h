#pragma once

#include <string>

#include "kivtools/Text.h"

namespace kiv::host::win32 {

/// A text as the system's wide calls take it.
inline std::wstring Wide(TextView text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char byte : text) {
    wide.push_back(static_cast<wchar_t>(windows1250::ToUnicode(static_cast<unsigned char>(byte))));
  }
  return wide;
}

}  // namespace kiv::host::win32
