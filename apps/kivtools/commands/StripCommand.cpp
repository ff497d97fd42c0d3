#include "apps/kivtools/values/ValueWork.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "Letters outside Windows-1250 are refused. A question mark becomes a t: it is taken for a letter that an\n"
    "earlier conversion lost.\n\n"
    "Example:\n"
    "  kivtools strip \"Țara Românească\"    Tara Romaneasca\n",
    "Literele din afara Windows-1250 sunt refuzate. Un semn de întrebare devine t: este luat drept o literă\n"
    "pierdută la o conversie de mai demult.\n\n"
    "Exemplu:\n"
    "  kivtools strip \"Țara Românească\"    Tara Romaneasca\n"};

class Strip final : public ValueWork {
 public:
  explicit Strip(const Library& library) : ValueWork("text"), library_(library) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    out += library_.WithoutDiacritics(value);
    return true;
  }

 private:
  const Library& library_;
};

int RunStrip(Session& session, const Arguments& arguments) {
  return AnswerValues(session, arguments, arguments.Values(), Strip(session.Lib()), {"TEXT"});
}

constexpr Command kCommand = {
    "strip",
    {"Take the Romanian diacritics off a text", "Scoate diacriticele românești dintr-un text"},
    "TEXT ...|-|FILE ...",
    0,
    kAnyNumber,
    kValueOptions,
    kDetails,
    RunStrip,
    true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
