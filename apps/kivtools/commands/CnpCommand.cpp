#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Command.h"

namespace kivtools {
namespace {

constexpr std::string_view kDetails =
    "Blanks in the code are passed over, and single dashes. The age counts calendar years. A code that is not valid\n"
    "gives \"CNP incorect\" and the exit code 1.\n\n"
    "Example:\n"
    "  kivtools cnp 1800101221144\n";

int RunCnp(Session& session, const Arguments& arguments) {
  const std::string code = WithoutGaps(arguments.Values().front());
  const Library& library = session.Lib();
  if (!library.Ask(library.FindPredicate("TestCNP"), code)) {
    session.out.Write(library.BirthDate(code) + "\n");
    return kCheckSaidNo;
  }
  session.out.Write("born  " + library.BirthDate(code) + "\nage   " + std::to_string(library.Age(code)) + "\n");
  return kDone;
}

constexpr Command kCommand = {"cnp", "Tell what a personal numeric code says", "CODE", 1, 1, {}, kDetails, RunCnp};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
