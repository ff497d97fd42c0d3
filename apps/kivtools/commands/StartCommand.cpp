#include "apps/kivtools/Command.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "Starts a program in its own folder and does not wait for it. PROGRAM is the path of its file; the folders of\n"
    "PATH are not searched. PARAMETERS is one argument with everything that the program gets; quote it as a\n"
    "whole. Elsewhere than on Windows it is split at blanks, and double quotes within it keep a parameter\n"
    "together.\n\n"
    "Example:\n"
    "  kivtools start /usr/bin/xdg-open '\"/home/ana/Raport anual.pdf\"'\n",
    "Pornește un program în dosarul lui și nu îl așteaptă. PROGRAM este calea fișierului; în dosarele din PATH nu\n"
    "se caută. PARAMETERS este un singur argument cu tot ce primește programul; puneți-l între ghilimele cu\n"
    "totul. În afara Windows este despărțit la spații, iar ghilimelele din el țin un parametru la un loc.\n\n"
    "Exemplu:\n"
    "  kivtools start /usr/bin/xdg-open '\"/home/ana/Raport anual.pdf\"'\n"};

int RunStart(Session& session, const Arguments& arguments) {
  const std::string& program = arguments.Values().front();
  session.Lib().StartProgram(PathFromUtf8(program), arguments.Values().size() > 1 ? arguments.Values()[1] : "");
  return kDone;
}

constexpr Command kCommand = {"start",
                              {"Start a program and do not wait for it", "Pornește un program și nu îl așteaptă"},
                              "PROGRAM [PARAMETERS]",
                              1,
                              2,
                              {},
                              kDetails,
                              RunStart};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
