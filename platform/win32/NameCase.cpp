#include "platform/NameCase.h"

#include <windows.h>

#include "kivtools/Windows1250.h"

namespace kiv::platform {

SystemName::Letter LowerLetter(SystemName::Letter letter) noexcept {
  // A pointer below 0x10000 stands for a letter, and so does the answer.
  const auto asked = static_cast<std::uintptr_t>(letter);
  return static_cast<wchar_t>(reinterpret_cast<std::uintptr_t>(
      CharLowerW(reinterpret_cast<wchar_t*>(asked))));  // NOLINT(performance-no-int-to-ptr)
}

Text LowerPath(TextView path) {
  Text lower(path);
  for (char& byte : lower) {
    const char16_t letter = windows1250::ToUnicode(static_cast<unsigned char>(byte));
    const auto small = windows1250::FromUnicode(static_cast<char16_t>(LowerLetter(static_cast<wchar_t>(letter))));
    byte = small ? static_cast<char>(*small) : byte;
  }
  return lower;
}

}  // namespace kiv::platform
