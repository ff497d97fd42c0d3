#include <array>
#include <cstdint>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Numbers.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 2> kOptions = {{
    {"short", "", "the hundredths in figures"},
    {"mode", "N", "in brackets: 1 in words, 2 the hundredths in figures, 3 the same with %"},
}};

constexpr std::string_view kDetails =
    "GRADE is the grade times 100, from 100 to 1000.\n\n"
    "Examples:\n"
    "  kivtools grade 950             NOUĂ, CINCIZECI\n"
    "  kivtools grade 950 --mode 2    (NOUĂ, 50)\n";

int RunGrade(Session& session, const Arguments& arguments) {
  const std::int32_t grade = ReadWholeNumber(arguments.Values().front(), 100, 1000, "a grade times 100");
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
