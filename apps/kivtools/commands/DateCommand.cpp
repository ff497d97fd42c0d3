#include <algorithm>
#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{{"form", "NAME", "only this form; without it all of them"}}};

constexpr std::string_view kDetails =
    "The forms bear the names of the library's operations.\n\n"
    "Examples:\n"
    "  kivtools date 2024-03-05\n"
    "  kivtools date 2024-03-05T14:07:09 --form TimeToStrRo2    Ora 14 07 minute 09 sec\n";

constexpr std::array<std::string_view, 16> kForms = {
    "DateToRoText",
    "DateToRoText2",
    "DateToRoText3",
    "DateToRoText4",
    "DateToRoText5",
    "DateToRoText6",
    "DateToRoText7",
    "DateToRoCode",
    "DateToRoTextScurt",
    "DateToRoTextScurtCuAn",
    "DateToRoTextScurtCuAnPlusOra",
    "DateToRoText_WithCode",
    "NumeZiDinSaptamana",
    "TimeToStrRoFrumos",
    "TimeToStrRo",
    "TimeToStrRo2",
};

/// The numbers where the pattern has digits ("0000-00-00"); throws where anything else differs from it.
template <std::size_t Count>
std::array<int, Count> MatchPattern(std::string_view text, std::string_view pattern) {
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  const bool matches =
      std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                 [&](char given, char wanted) { return wanted == '0' ? isDigit(given) : given == wanted; });
  if (!matches) {
    throw InputError(Shown(text) + " is not YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS");
  }
  std::array<int, Count> numbers{};
  std::size_t number = 0;
  for (const char character : text) {
    if (isDigit(character)) {
      numbers[number] = numbers[number] * 10 + (character - '0');
    } else {
      ++number;
    }
  }
  return numbers;
}

double ReadMoment(const Library& library, const std::string& text) {
  try {
    if (text.find('T') == std::string::npos) {
      const auto [year, month, day] = MatchPattern<3>(text, "0000-00-00");
      return library.EncodeDate(year, month, day);
    }
    const auto [year, month, day, hour, minute, second] = MatchPattern<6>(text, "0000-00-00T00:00:00");
    return library.EncodeDate(year, month, day, hour, minute, second);
  } catch (const LibraryError& error) {
    throw InputError(Shown(text) + ": " + error.what());
  }
}

int RunDate(Session& session, const Arguments& arguments) {
  const auto form = arguments.ValueOf("form");
  if (form && std::find(kForms.begin(), kForms.end(), *form) == kForms.end()) {
    throw InputError(Shown(*form) + " is not a form; kivtools date without --form shows them all");
  }
  const Library& library = session.Lib();
  const double moment = ReadMoment(library, arguments.Values().front());
  if (form) {
    session.out.Write(library.DateText(*form, moment) + "\n");
    return kDone;
  }
  for (const std::string_view name : kForms) {
    const std::string text = library.DateText(std::string(name), moment);
    session.out.Write((text.empty() ? std::string(name) : PadEnd(name, 30) + text) + "\n");
  }
  return kDone;
}

constexpr Command kCommand = {
    "date", "Write a date in Romanian, in every form", "YYYY-MM-DD[THH:MM:SS]", 1, 1, kOptions, kDetails, RunDate};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
