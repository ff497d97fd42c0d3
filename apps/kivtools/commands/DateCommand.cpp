#include <algorithm>
#include <array>
#include <optional>

#include "apps/kivtools/Dates.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/values/ValueWork.h"

namespace kivtools {
namespace {

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

constexpr auto kOptions = WithValueOptions<1>(
    {{{"form", "NAME", {"only this form; without it all of them", "numai forma aceasta; altfel toate"}, kForms}}});

constexpr Phrase kDetails = {
    "DATE is written 2024-03-05, 05.03.2024 or \"5 martie 2024\"; T14:07:09 after it is the time of day. The forms\n"
    "bear the names of the library's operations; for the values of files it is DateToRoText unless --form says\n"
    "another one.\n\n"
    "Examples:\n"
    "  kivtools date 2024-03-05\n"
    "  kivtools date 2024-03-05T14:07:09 --form TimeToStrRo2    Ora 14 07 minute 09 sec\n",
    "DATE se scrie 2024-03-05, 05.03.2024 sau \"5 martie 2024\"; T14:07:09 după ea este ora. Formele au numele\n"
    "operațiilor bibliotecii; pentru valorile din fișiere forma este DateToRoText, dacă --form nu cere alta.\n\n"
    "Exemple:\n"
    "  kivtools date 2024-03-05\n"
    "  kivtools date 2024-03-05T14:07:09 --form TimeToStrRo2    Ora 14 07 minute 09 sec\n"};

class Date final : public ValueWork {
 public:
  Date(const Library& library, const std::optional<std::string>& form)
      : ValueWork(form.value_or("")),
        library_(library),
        all_(!form),
        form_(library.FindDateForm(form.value_or("DateToRoText"))) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    out += library_.DateText(form_, DaysOf(value));
    return true;
  }

  bool AppendLines(std::string_view value, TextBuffer& out) const override {
    if (!all_) {
      return ValueWork::AppendLines(value, out);
    }
    const double days = DaysOf(value);
    for (const std::string_view name : kForms) {
      const std::string text = library_.DateText(std::string(name), days);
      out += (text.empty() ? std::string(name) : PadEnd(name, 30) + text) + "\n";
    }
    return true;
  }

  bool AppendMembers(std::string_view value, TextBuffer& out) const override {
    if (!all_) {
      return ValueWork::AppendMembers(value, out);
    }
    const double days = DaysOf(value);
    for (const std::string_view name : kForms) {
      out += ", " + JsonString(name) + ": " + JsonString(library_.DateText(std::string(name), days));
    }
    return true;
  }

 private:
  [[nodiscard]] double DaysOf(std::string_view text) const {
    const Moment moment = ReadValue(text, ReadMoment);
    return library_.EncodeDate(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second);
  }

  const Library& library_;
  bool all_;
  Library::DateForm* form_;
};

int RunDate(Session& session, const Arguments& arguments) {
  const auto form = arguments.ValueOf("form");
  if (form && std::ranges::find(kForms, *form) == kForms.end()) {
    const std::string meant = DidYouMean(*form, kForms);
    throw InputError(Say({"{0} is not a form{1} kivtools date without --form shows them all",
                          "{0} nu este o formă{1} kivtools date fără --form le arată pe toate"},
                         Shown(*form), meant.empty() ? ";" : meant));
  }
  const ValueRules rules{.what = "DATE", .inParagraphs = !form};
  return AnswerValues(session, arguments, arguments.Values(), Date(session.Lib(), form), rules);
}

constexpr Command kCommand = {"date",
                              {"Write a date in Romanian, in every form", "Scrie o dată în română, în toate formele"},
                              "DATE ...|-|FILE ...",
                              0,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunDate,
                              true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
