#include "apps/kivtools/Command.h"
#include "apps/kivtools/TreeWork.h"

namespace kivtools {
namespace {

constexpr std::string_view kDetails =
    "Compares two files byte by byte and says whether they are equal, or whether it is their sizes or their bytes "
    "that\n"
    "differ. Exit code: 0 they are equal, 1 they differ, 2 one of them cannot be read.\n\n"
    "Example:\n"
    "  kivtools compare firme.dbf /salvare/firme.dbf\n";

int RunCompare(Session& session, const Arguments& arguments) {
  const std::filesystem::path a = GivenPath(arguments.Values()[0], "A");
  const std::filesystem::path b = GivenPath(arguments.Values()[1], "B");
  const Library& library = session.Lib();
  if (library.FilesAreEqual(a, b)) {
    session.out.Write("equal\n");
    return kDone;
  }
  std::error_code unknown;
  const std::uintmax_t sizeOfA = std::filesystem::file_size(a, unknown);
  const std::uintmax_t sizeOfB = unknown ? sizeOfA : std::filesystem::file_size(b, unknown);
  session.out.Write(unknown || sizeOfA == sizeOfB
                        ? "the bytes differ\n"
                        : "the sizes differ: " + Counted(sizeOfA, "byte") + " and " + Counted(sizeOfB, "byte") + "\n");
  return kCheckSaidNo;
}

constexpr Command kCommand = {"compare", "Compare two files", "A B", 2, 2, {}, kDetails, RunCompare};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
