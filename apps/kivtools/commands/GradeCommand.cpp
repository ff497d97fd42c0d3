#include <array>
#include <cstdint>
#include <optional>

#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/values/ValueWork.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<2>({{
    {"short", "", {"the hundredths in figures", "sutimile în cifre"}},
    {"mode",
     "N",
     {"in brackets: 1 in words, 2 the hundredths in figures, 3 the same with %",
      "în paranteze: 1 în litere, 2 cu sutimile în cifre, 3 la fel, cu %"}},
}});

constexpr Phrase kDetails = {
    "GRADE is a grade from 1 to 10 such as 9.50 or 9,50, or the grade times 100, such as 950.\n\n"
    "Examples:\n"
    "  kivtools grade 9.50            NOUĂ, CINCIZECI\n"
    "  kivtools grade 950 --mode 2    (NOUĂ, 50)\n",
    "GRADE este o notă de la 1 la 10, ca 9.50 sau 9,50, ori nota înmulțită cu 100, ca 950.\n\n"
    "Exemple:\n"
    "  kivtools grade 9,50            NOUĂ, CINCIZECI\n"
    "  kivtools grade 950 --mode 2    (NOUĂ, 50)\n"};

/// A grade times 100; nothing for what is none.
std::optional<std::int32_t> GradeOf(std::string_view text) {
  constexpr std::int64_t kUnit = kiv::Currency::kPerUnit;
  try {
    const std::int64_t number = ReadNumber(text, 2);
    const bool hundredfold = number % kUnit == 0 && number >= 100 * kUnit;
    const std::int64_t grade = number / (hundredfold ? kUnit : kUnit / 100);
    return grade < 100 || grade > 1000 ? std::nullopt : std::optional(static_cast<std::int32_t>(grade));
  } catch (const InputError&) {
    return std::nullopt;
  }
}

class Grade final : public ValueWork {
 public:
  Grade(const Library& library, const Arguments& arguments)
      : ValueWork("grade"), library_(library), figures_(arguments.Has("short")) {
    if (const auto mode = arguments.ValueOf("mode")) {
      mode_ = ReadWholeNumber(*mode, 1, 3, {"a mode", "un mod"});
    }
  }

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    const auto grade = GradeOf(value);
    if (!grade) {
      throw InputError(Say({"{0} is not a grade from 1 to 10 such as 9.50, nor one times 100 such as 950",
                            "{0} nu este o notă de la 1 la 10, ca 9,50, nici una înmulțită cu 100, ca 950"},
                           Shown(value)));
    }
    out += mode_ ? library_.GradeInBrackets(*grade, *mode_) : library_.Grade(*grade, figures_);
    return true;
  }

 private:
  const Library& library_;
  bool figures_;
  std::optional<std::int32_t> mode_;
};

int RunGrade(Session& session, const Arguments& arguments) {
  if (arguments.Has("short") && arguments.Has("mode")) {
    throw InputError(Say({"\"--short\" does not go with --mode", "\"--short\" nu merge cu --mode"}));
  }
  return AnswerValues(session, arguments, arguments.Values(), Grade(session.Lib(), arguments), {"GRADE"});
}

constexpr Command kCommand = {"grade",
                              {"Write a school grade in words", "Scrie o notă școlară în litere"},
                              "GRADE ...|-|FILE ...",
                              0,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunGrade,
                              true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
