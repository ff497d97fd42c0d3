#include "apps/kivtools/Command.h"

namespace kivtools {
namespace {

constexpr std::string_view kDetails =
    "Letters outside Windows-1250 are refused. A question mark becomes a t: it is taken for a letter that an earlier\n"
    "conversion lost.\n\n"
    "Example:\n"
    "  kivtools strip \"Țara Românească\"    Tara Romaneasca\n";

int RunStrip(Session& session, const Arguments& arguments) {
  session.out.Write(session.Lib().WithoutDiacritics(arguments.Values().front()) + "\n");
  return kDone;
}

constexpr Command kCommand = {"strip", "Take the Romanian diacritics off a text", "TEXT", 1, 1, {}, kDetails, RunStrip};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
