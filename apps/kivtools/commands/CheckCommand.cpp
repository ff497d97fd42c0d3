#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <span>

#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/values/ValueWork.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<3>({{
    {"invalid-only",
     "",
     {"answer only for the codes that are not valid", "răspunde numai pentru codurile care nu sunt valide"}},
    {"ro", "", {"take a leading RO off (fiscal codes of VAT payers)", "scoate RO din față (la plătitorii de TVA)"}},
    {kReasons,
     "NAME",
     {"with --add: one more column, with the reason where a code is not valid",
      "cu --add: încă o coloană, cu motivul unde un cod nu este valid"}},
}});

constexpr Phrase kDetails = {
    "KIND is iban, cnp, cui or siruta. Blanks in a code are passed over, and single dashes. Every code is printed\n"
    "after \"valid\" or \"invalid\" and a tab, control characters in it as blanks. Without a CODE the lines of\n"
    "standard input are checked. What comes from files is counted, and blank lines are only counted. A record\n"
    "that lacks the column is invalid. After a code that is not valid comes the reason, from files with its line;\n"
    "places in the code are counted without blanks, dashes and an RO that is taken off.\n\n"
    "Exit code: 0 all are valid, 1 one is not, 2 bad usage or input.\n\n"
    "Examples:\n"
    "  kivtools check iban \"RO49 AAAA 1B31 0075 9384 0000\"\n"
    "  kivtools check cui --csv cod_fiscal --invalid-only < parteneri.csv\n"
    "  kivtools check cui --ro --csv cod_fiscal --add verificat --reasons motiv parteneri.csv > verificati.csv\n",
    "KIND este iban, cnp, cui sau siruta. Peste spațiile dintr-un cod se trece, și peste câte o cratimă. Fiecare\n"
    "cod se scrie după \"valid\" sau \"invalid\" și un tabulator, cu spații în locul caracterelor de control. Fără\n"
    "CODE se verifică rândurile intrării standard. Ce vine din fișiere se numără, iar rândurile goale doar se\n"
    "numără. O înregistrare fără coloana cerută nu este validă. După un cod care nu este valid stă motivul, din\n"
    "fișiere și cu rândul; locurile din cod se numără fără spații, fără cratime și fără un RO scos.\n\n"
    "Codul de ieșire: 0 toate sunt valide, 1 unul nu este, 2 folosire sau date greșite.\n\n"
    "Exemple:\n"
    "  kivtools check iban \"RO49 AAAA 1B31 0075 9384 0000\"\n"
    "  kivtools check cui --csv cod_fiscal --invalid-only < parteneri.csv\n"
    "  kivtools check cui --ro --csv cod_fiscal --add verificat --reasons motiv parteneri.csv > verificati.csv\n"};

struct Kind {
  std::string_view name;
  std::string_view operation;
};
constexpr std::array<Kind, 4> kKinds = {
    {{"iban", "EsteIBAN"}, {"cnp", "TestCNP"}, {"cui", "TestCodFiscal"}, {"siruta", "ValideazaSIRUTA"}}};
constexpr auto kKindNames = [] {
  std::array<std::string_view, kKinds.size()> names;
  std::ranges::transform(kKinds, names.begin(), &Kind::name);
  return names;
}();

class Check final : public ValueWork {
 public:
  Check(const Library& library, const Kind& kind, bool dropRo)
      : ValueWork("valid"),
        library_(library),
        predicate_(library.FindPredicate(std::string(kind.operation))),
        explanation_(library.FindExplanation(std::string(kind.operation))),
        fiscal_(kind.name == "cui"),
        dropRo_(dropRo) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    const bool valid = Ask(value);
    out += valid ? "valid" : "invalid";
    return valid;
  }

  /// Control characters, which might break the output's lines or act on the terminal, become blanks.
  bool AppendLine(std::string_view value, TextBuffer& out) const override {
    const bool valid = Ask(value);
    if (valid) {
      out += std::string_view("valid\t");
    } else {
      out += std::string_view("invalid\t");
    }
    out.AppendChanged(value, [](char byte) { return kiv::ascii::IsControl(byte) ? ' ' : byte; });
    return valid;
  }

  bool AppendLines(std::string_view value, TextBuffer& out) const override {
    const bool valid = AppendLine(value, out);
    if (!valid) {
      out += '\t';
      AppendReason(value, out);
    }
    out += '\n';
    return valid;
  }

  /// The reason has no character that JSON would want escaped.
  void AppendReason(std::string_view value, TextBuffer& out) const override {
    const bool gaps = MayHaveGaps(value);
    const std::string plain = gaps ? WithoutGaps(value) : std::string();
    const std::string_view code = gaps ? plain : value;
    library_.AppendReason(explanation_, dropRo_ ? WithoutRo(code) : code, out);
  }

  bool AppendMembers(std::string_view value, TextBuffer& out) const override {
    const bool valid = Ask(value);
    out += valid ? R"(, "valid": true)" : R"(, "valid": false, "reason": ")";
    if (!valid) {
      AppendReason(value, out);
      out += '"';
    }
    return valid;
  }

  /// Whether a code was not valid that has the RO which an option takes off.
  [[nodiscard]] bool SawRo() const noexcept { return sawRo_; }

 private:
  [[nodiscard]] bool Ask(std::string_view code) const {
    const auto ask = [this](std::string_view asked) { return library_.Ask(predicate_, asked); };
    const bool valid = SaysYes(ask, code, dropRo_);
    if (!valid && fiscal_ && !dropRo_ && BeginsWithRo(code)) {
      sawRo_ = true;
    }
    return valid;
  }

  const Library& library_;
  Library::Predicate* predicate_;
  Library::Explanation* explanation_;
  bool fiscal_;
  bool dropRo_;
  mutable std::atomic<bool> sawRo_{false};
};

const Kind& FindKind(const std::string& name) {
  const auto* const kind = std::ranges::find(kKinds, name, &Kind::name);
  if (kind == kKinds.end()) {
    throw InputError(Say({"{0} is not a kind of code: iban, cnp, cui or siruta{1}",
                          "{0} nu este un fel de cod: iban, cnp, cui sau siruta{1}"},
                         Shown(name), DidYouMean(name, kKindNames)));
  }
  return *kind;
}

int RunCheck(Session& session, const Arguments& arguments) {
  const Kind& kind = FindKind(arguments.Values().front());
  if (arguments.Has("ro") && kind.name != "cui") {
    throw InputError(Say({"\"--ro\" goes with cui only", "\"--ro\" merge numai cu cui"}));
  }
  const Check check(session.Lib(), kind, arguments.Has("ro"));
  const ValueRules rules{.what = "CODE",
                         .isCheck = true,
                         .invalidOnly = arguments.Has("invalid-only"),
                         .reasons = arguments.Has(kReasons)};
  const int result = AnswerValues(session, arguments, std::span(arguments.Values()).subspan(1), check, rules);
  if (check.SawRo()) {
    session.Report(Say({"codes with RO in front are not valid as they are; --ro takes it off",
                        "codurile cu RO în față nu sunt valide așa; --ro îl scoate"}));
  }
  return result;
}

constexpr Command kCommand = {"check",
                              {"Check account numbers, personal, fiscal or locality codes",
                               "Verifică IBAN-uri, CNP-uri, coduri fiscale sau SIRUTA"},
                              "KIND [CODE ...|-|FILE ...]",
                              1,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunCheck,
                              true,
                              kKindNames};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
