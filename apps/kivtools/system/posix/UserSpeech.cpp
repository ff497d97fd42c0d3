#include "apps/kivtools/system/UserSpeech.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

/// What is chosen for a part of the user's locale. Example: "ro_RO.UTF-8".
std::string_view LocaleOf(const char* part) noexcept {
  for (const char* const variable : {"LC_ALL", part, "LANG"}) {
    if (const char* const value = std::getenv(variable); value != nullptr && *value != '\0') {
      return value;
    }
  }
  return {};
}

bool IsUtf8(std::string_view letters) noexcept {
  const auto is = [letters](std::string_view name) {
    return std::ranges::equal(letters, name, {}, kiv::ascii::ToLower<char>);
  };
  return letters.empty() || is("utf-8") || is("utf8");
}

}  // namespace

Speech UserSpeech() noexcept {
  const std::string_view locale = LocaleOf("LC_MESSAGES");
  const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
  const std::string_view type = LocaleOf("LC_CTYPE");
  const std::size_t dot = type.find('.');
  const std::string_view letters = dot == std::string_view::npos ? std::string_view() : type.substr(dot + 1);
  return {language == "ro" ? Language::Romanian : Language::English, IsUtf8(letters.substr(0, letters.find('@')))};
}

}  // namespace kivtools
