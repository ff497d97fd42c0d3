#include "apps/kivtools/Command.h"
#include "apps/kivtools/TreeWork.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "Compares two files byte by byte and says whether they are equal, or whether it is their sizes or their bytes\n"
    "that differ. Exit code: 0 they are equal, 1 they differ, 2 one of them cannot be read.\n\n"
    "Example:\n"
    "  kivtools compare firme.dbf /salvare/firme.dbf\n",
    "Compară două fișiere octet cu octet și spune dacă sunt la fel sau dacă diferă mărimile ori octeții.\n"
    "Codul de ieșire: 0 sunt la fel, 1 diferă, 2 unul nu se poate citi.\n\n"
    "Exemplu:\n"
    "  kivtools compare firme.dbf /salvare/firme.dbf\n"};

int RunCompare(Session& session, const Arguments& arguments) {
  const std::filesystem::path a = GivenPath(arguments.Values()[0], "A");
  const std::filesystem::path b = GivenPath(arguments.Values()[1], "B");
  const Library& library = session.Lib();
  if (library.FilesAreEqual(a, b)) {
    session.out.Write(Say({"equal\n", "la fel\n"}));
    return kDone;
  }
  std::error_code unknown;
  const std::uintmax_t sizeOfA = std::filesystem::file_size(a, unknown);
  const std::uintmax_t sizeOfB = unknown ? sizeOfA : std::filesystem::file_size(b, unknown);
  session.out.Write(unknown || sizeOfA == sizeOfB
                        ? Say({"the bytes differ\n", "diferă octeții\n"})
                        : Say({"the sizes differ: {0} and {1}\n", "diferă mărimile: {0} și {1}\n"},
                              Counted(sizeOfA, kBytes), Counted(sizeOfB, kBytes)));
  return kCheckSaidNo;
}

constexpr Command kCommand = {"compare", {"Compare two files", "Compară două fișiere"}, "A B", 2, 2, {}, kDetails,
                              RunCompare};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
