#include <cstdint>

#include "apps/kivtools/Command.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "A version has at most four numbers joined by dots. The difference of the first numbers that differ is\n"
    "printed. Exit code: 0 the versions are equal, 10 A is below B, 11 A is above B, 2 one of them is no version.\n\n"
    "Examples:\n"
    "  kivtools compare-versions 1.10 1.9       1\n"
    "  kivtools compare-versions 1.2 1.2.0.0    0\n",
    "O versiune are cel mult patru numere legate prin puncte. Se scrie diferența primelor numere care nu sunt la\n"
    "fel. Codul de ieșire: 0 versiunile sunt la fel, 10 A este sub B, 11 A este peste B, 2 una nu este o\n"
    "versiune.\n\n"
    "Exemple:\n"
    "  kivtools compare-versions 1.10 1.9       1\n"
    "  kivtools compare-versions 1.2 1.2.0.0    0\n"};

int RunCompareVersions(Session& session, const Arguments& arguments) {
  constexpr int kBelow = 10;
  constexpr int kAbove = 11;
  constexpr int kEqual = kDone;
  const std::int32_t difference = session.Lib().CompareVersions(arguments.Values()[0], arguments.Values()[1]);
  session.out.Write(std::to_string(difference) + "\n");
  return difference == 0 ? kEqual : difference < 0 ? kBelow : kAbove;
}

constexpr Command kCommand = {
    "compare-versions", {"Compare two version numbers", "Compară două numere de versiune"}, "A B", 2, 2, {}, kDetails,
    RunCompareVersions};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
