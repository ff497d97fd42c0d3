#include "apps/kivtools/CodePages.h"

#include <algorithm>
#include <array>
#include <string>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

struct Name {
  std::string_view name;  ///< in small letters, without dashes, underscores and blanks
  std::int32_t page;
};
constexpr std::array<Name, 8> kNames = {{{"utf8", 65001},
                                         {"utf7", 65000},
                                         {"ascii", 20127},
                                         {"usascii", 20127},
                                         {"latin1", 28591},
                                         {"latin2", 28592},
                                         {"latin10", 28606},
                                         {"koi8r", 20866}}};

/// What has the page's number in its name: the number is `base` more.
struct Family {
  std::string_view begin;
  std::int32_t base;
  std::int32_t most;
};
constexpr std::array<Family, 5> kFamilies = {
    {{"iso8859", 28590, 16}, {"windows", 0, 65535}, {"win", 0, 65535}, {"cp", 0, 65535}, {"ibm", 0, 65535}}};

std::string Plain(std::string_view text) {
  std::string plain;
  for (const char character : text) {
    if (std::string_view("-_ ").find(character) == std::string_view::npos) {
      plain += kiv::ascii::ToLower(character);
    }
  }
  return plain;
}

}  // namespace

std::int32_t ReadCodePage(std::string_view text) {
  if (!text.empty() && (kiv::ascii::IsDigit(text.front()) || text.front() == '-')) {
    return ReadWholeNumber(text, 0, 65535, {"the number of a code page", "numărul unei pagini de coduri"});
  }
  const std::string plain = Plain(text);
  if (const auto* const named = std::ranges::find(kNames, plain, &Name::name); named != kNames.end()) {
    return named->page;
  }
  for (const auto& [begin, base, most] : kFamilies) {
    const std::string_view number = std::string_view(plain).substr(std::min(begin.size(), plain.size()));
    if (plain.starts_with(begin) && !number.empty() && number.size() <= 5 &&
        std::ranges::all_of(number, kiv::ascii::IsDigit<char>)) {
      const int given = std::stoi(std::string(number));
      if (given > 0 && given <= most) {
        return base + given;
      }
    }
  }
  throw InputError(Say({"{0} is not a code page: utf-8, windows-1250 or another name, or a number",
                        "{0} nu este o pagină de coduri: utf-8, windows-1250 sau alt nume, ori un număr"},
                       Shown(text)));
}

}  // namespace kivtools
