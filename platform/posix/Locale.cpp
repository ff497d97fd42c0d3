#include "platform/Locale.h"

#include <langinfo.h>
#include <locale.h>

#include <array>
#include <ctime>
#include <memory>
#include <type_traits>

namespace kiv::platform {
namespace {

struct FreeLocale {
  void operator()(locale_t locale) const noexcept { freelocale(locale); }
};
using UserLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// The bytes of a locale whose encoding is `codeset`, as Windows-1250. Other encodings than UTF-8 are taken for ASCII.
std::optional<Text> TextFromCodeset(TextView bytes, TextView codeset) {
  if (codeset == "UTF-8") {
    try {
      return FromUtf8(bytes);
    } catch (const ConversionError&) {
      return std::nullopt;
    }
  }
  for (const char byte : bytes) {
    if (static_cast<unsigned char>(byte) >= 0x80) {
      return std::nullopt;
    }
  }
  return Text(bytes);
}

}  // namespace

std::optional<Text> TimeInUserFormat(int hour, int minute, int second) {
  // The user's own choice from the environment: the process's locale is the host's business.
  const UserLocale locale(newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "", nullptr));
  if (locale == nullptr) {
    return std::nullopt;
  }
  tm time{};
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  time.tm_mday = 1;
  std::array<char, 128> bytes{};
  const std::size_t length = strftime_l(bytes.data(), bytes.size(), "%X", &time, locale.get());
  if (length == 0) {
    return std::nullopt;
  }
  return TextFromCodeset({bytes.data(), length}, nl_langinfo_l(CODESET, locale.get()));
}

}  // namespace kiv::platform
