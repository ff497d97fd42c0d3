#include "apps/kivtools/Command.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "Writes the file data source auto_dsn.dsn into the database's folder, replacing a former one, and prints the\n"
    "connection string that goes with it. The database itself is not opened and need not exist yet.\n\n"
    "Example:\n"
    "  kivtools dsn firma/firma.mdb    Provider=MSDASQL.1;...FILEDSN=firma/auto_dsn.dsn;...\n",
    "Scrie sursa de date auto_dsn.dsn în dosarul bazei de date, în locul uneia de dinainte, și tipărește șirul de\n"
    "conectare care merge cu ea. Baza de date nu se deschide și poate nici nu există încă.\n\n"
    "Exemplu:\n"
    "  kivtools dsn firma/firma.mdb    Provider=MSDASQL.1;...FILEDSN=firma/auto_dsn.dsn;...\n"};

int RunDsn(Session& session, const Arguments& arguments) {
  session.out.Write(session.Lib().ConnectionStringForMdb(PathFromUtf8(arguments.Values().front())) + "\n");
  return kDone;
}

constexpr Command kCommand = {
    "dsn",
    {"Write the ODBC data source of an Access database", "Scrie sursa de date ODBC a unei baze de date Access"},
    "FILE.mdb",
    1,
    1,
    {},
    kDetails,
    RunDsn};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
