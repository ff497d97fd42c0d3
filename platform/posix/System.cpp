#include "platform/System.h"

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <vector>

namespace kiv::platform {
namespace {

struct Language {
  std::string_view name;
  std::uint16_t number;
};

/// The languages that version resources are commonly written in, by the names that locales begin with.
constexpr std::array<Language, 38> kLanguages = {{
    {"ar", 0x01}, {"bg", 0x02}, {"ca", 0x03}, {"zh", 0x04}, {"cs", 0x05}, {"da", 0x06}, {"de", 0x07}, {"el", 0x08},
    {"en", 0x09}, {"es", 0x0A}, {"fi", 0x0B}, {"fr", 0x0C}, {"he", 0x0D}, {"hu", 0x0E}, {"is", 0x0F}, {"it", 0x10},
    {"ja", 0x11}, {"ko", 0x12}, {"nl", 0x13}, {"nb", 0x14}, {"no", 0x14}, {"pl", 0x15}, {"pt", 0x16}, {"ro", 0x18},
    {"ru", 0x19}, {"hr", 0x1A}, {"sr", 0x1A}, {"sk", 0x1B}, {"sq", 0x1C}, {"sv", 0x1D}, {"th", 0x1E}, {"tr", 0x1F},
    {"uk", 0x22}, {"sl", 0x24}, {"et", 0x25}, {"lv", 0x26}, {"lt", 0x27}, {"vi", 0x2A},
}};

std::string_view MessageLocale() {
  for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return {};
}

}  // namespace

Text UserName() {
  const uid_t user = geteuid();
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  int failure = 0;
  while ((failure = getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found)) == ERANGE || failure == EINTR) {
    if (failure == ERANGE) {
      buffer.resize(buffer.size() * 2);
    }
  }
  return found != nullptr ? Text(found->pw_name) : Text();
}

std::int32_t MajorVersion() {
  utsname names{};
  return uname(&names) == 0 ? static_cast<std::int32_t>(std::strtol(names.release, nullptr, 10)) : 0;
}

std::uint16_t UserLanguage() {
  const std::string_view locale = MessageLocale();
  const std::string_view name = locale.substr(0, locale.find_first_of("_.@"));
  const auto* const found =
      std::find_if(kLanguages.begin(), kLanguages.end(), [name](const Language& known) { return known.name == name; });
  constexpr std::uint16_t kDefaultRegion = 1U << 10U;
  return found != kLanguages.end() ? static_cast<std::uint16_t>(kDefaultRegion | found->number) : std::uint16_t{0};
}

}  // namespace kiv::platform
