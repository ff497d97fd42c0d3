#include <array>
#include <cstdint>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 2> kOptions = {{
    {"short", "", "the hundredths in figures"},
    {"mode", "N", "in brackets: 1 in words, 2 the hundredths in figures, 3 the same with %"},
}};

constexpr std::string_view kDetails =
    "GRADE is a grade from 1 to 10 such as 9.50 or 9,50, or the grade times 100, such as 950.\n\n"
    "Examples:\n"
    "  kivtools grade 9.50            NOUĂ, CINCIZECI\n"
    "  kivtools grade 950 --mode 2    (NOUĂ, 50)\n";

/// A grade times 100.
std::int32_t ReadGrade(std::string_view text) {
  constexpr std::int64_t kUnit = kiv::Currency::kPerUnit;
  const std::int64_t number = ReadNumber(text, 2);
  const bool hundredfold = number % kUnit == 0 && number >= 100 * kUnit;
  const std::int64_t grade = hundredfold ? number / kUnit : number / (kUnit / 100);
  if (grade < 100 || grade > 1000) {
    throw InputError("is not a grade from 1 to 10 such as 9.50, nor one times 100 such as 950");
  }
  return static_cast<std::int32_t>(grade);
}

int RunGrade(Session& session, const Arguments& arguments) {
  const std::int32_t grade = ReadValue(arguments.Values().front(), ReadGrade);
  const Library& library = session.Lib();
  std::string text;
  if (const auto mode = arguments.ValueOf("mode")) {
    if (arguments.Has("short")) {
      throw InputError("\"--short\" does not go with --mode");
    }
    text = library.GradeInBrackets(grade, ReadWholeNumber(*mode, 1, 3, "a mode"));
  } else {
    text = library.Grade(grade, arguments.Has("short"));
  }
  session.out.Write(text + "\n");
  return kDone;
}

constexpr Command kCommand = {"grade", "Write a school grade in words", "GRADE", 1, 1, kOptions, kDetails, RunGrade};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
