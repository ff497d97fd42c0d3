#include "platform/Locale.h"

#include <windows.h>

#include <array>

namespace kiv::platform {

std::optional<Text> TimeInUserFormat(int hour, int minute, int second) {
  SYSTEMTIME time{};
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  std::array<wchar_t, 128> wide{};
  const int length = GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, wide.data(), static_cast<int>(wide.size()));
  if (length <= 1) {
    return std::nullopt;
  }
  Text text;
  for (int i = 0; i < length - 1; ++i) {  // the length counts the terminator
    const auto byte = windows1250::FromUnicode(wide[static_cast<std::size_t>(i)]);
    if (!byte) {
      return std::nullopt;
    }
    text.push_back(static_cast<char>(*byte));
  }
  return text;
}

}  // namespace kiv::platform
