#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/values/ValueWork.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<1>({{{"age", "", {"the age alone", "numai vârsta"}}}});

constexpr Phrase kDetails = {
    "Blanks in the code are passed over, and single dashes. The age counts calendar years. A code that is not\n"
    "valid gives \"CNP incorect\" and the exit code 1.\n"
    "Values of files give birth date and age on one line with a tab between, a column the birth date.\n\n"
    "Example:\n"
    "  kivtools cnp 1800101221144\n",
    "Peste spațiile din cod se trece, și peste câte o cratimă. Vârsta numără anii calendaristici. Un cod care nu\n"
    "este valid dă \"CNP incorect\" și codul de ieșire 1.\n"
    "Pentru valorile din fișiere se scriu data nașterii și vârsta pe un rând, cu un tabulator între ele, iar\n"
    "într-o coloană data nașterii.\n\n"
    "Exemplu:\n"
    "  kivtools cnp 1800101221144\n"};

class Cnp final : public ValueWork {
 public:
  Cnp(const Library& library, bool ageOnly)
      : ValueWork("born"), library_(library), predicate_(library.FindPredicate("TestCNP")), ageOnly_(ageOnly) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    const std::string code = WithoutGaps(value);
    const bool valid = IsValid(code);
    out += valid && ageOnly_ ? Age(code) : library_.BirthDate(code);
    return valid;
  }

  bool AppendLine(std::string_view value, TextBuffer& out) const override {
    const std::string code = WithoutGaps(value);
    const bool valid = AppendAnswer(code, out);
    out += valid && !ageOnly_ ? "\t" + Age(code) : "";
    return valid;
  }

  bool AppendLines(std::string_view value, TextBuffer& out) const override {
    const std::string code = WithoutGaps(value);
    if (ageOnly_ || !IsValid(code)) {
      return ValueWork::AppendLines(code, out);
    }
    out += Say({"born  {0}\nage   {1}\n", "născut   {0}\nvârsta   {1}\n"}, library_.BirthDate(code), Age(code));
    return true;
  }

  bool AppendMembers(std::string_view value, TextBuffer& out) const override {
    const std::string code = WithoutGaps(value);
    const bool valid = IsValid(code);
    out += valid ? R"(, "valid": true, "born": )" + JsonString(library_.BirthDate(code)) + R"(, "age": )" + Age(code)
                 : R"(, "valid": false)";
    return valid;
  }

 private:
  [[nodiscard]] bool IsValid(std::string_view code) const { return library_.Ask(predicate_, code); }
  [[nodiscard]] std::string Age(std::string_view code) const { return std::to_string(library_.Age(code)); }

  const Library& library_;
  Library::Predicate* predicate_;
  bool ageOnly_;
};

int RunCnp(Session& session, const Arguments& arguments) {
  return AnswerValues(session, arguments, arguments.Values(), Cnp(session.Lib(), arguments.Has("age")), {"CODE"});
}

constexpr Command kCommand = {"cnp",
                              {"Tell what a personal numeric code says", "Spune ce cuprinde un cod numeric personal"},
                              "CODE ...|-|FILE ...",
                              0,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunCnp,
                              true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
