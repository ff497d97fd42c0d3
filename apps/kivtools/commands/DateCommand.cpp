#include <algorithm>
#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Dates.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{{"form", "NAME", "only this form; without it all of them"}}};

constexpr std::string_view kDetails =
    "DATE is written 2024-03-05, 05.03.2024 or \"5 martie 2024\"; T14:07:09 after it is the time of day. The forms "
    "bear\n"
    "the names of the library's operations.\n\n"
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

double DaysOf(const Library& library, const std::string& text) {
  const Moment moment = ReadValue(text, ReadMoment);
  return library.EncodeDate(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second);
}

int RunDate(Session& session, const Arguments& arguments) {
  const auto form = arguments.ValueOf("form");
  if (form && std::find(kForms.begin(), kForms.end(), *form) == kForms.end()) {
    throw InputError(Shown(*form) + " is not a form; kivtools date without --form shows them all");
  }
  const Library& library = session.Lib();
  const double days = DaysOf(library, arguments.Values().front());
  if (form) {
    session.out.Write(library.DateText(*form, days) + "\n");
    return kDone;
  }
  for (const std::string_view name : kForms) {
    const std::string text = library.DateText(std::string(name), days);
    session.out.Write((text.empty() ? std::string(name) : PadEnd(name, 30) + text) + "\n");
  }
  return kDone;
}

constexpr Command kCommand = {"date", "Write a date in Romanian, in every form", "DATE", 1, 1, kOptions, kDetails,
                              RunDate};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
