#pragma once

#include <string>

#include "apps/kivtools/Arguments.h"
#include "apps/kivtools/Command.h"
#include "apps/kivtools/DataFile.h"

namespace kivtools {

/// What the file is, in one line. Example: "linii: 3 rows (1 inserted), 4 changes in the log".
std::string Summary(const DataFile& file);

/// A value as a person and as a machine reads it; both say null.
std::string ForPeople(const DataFile::Shown& value);
std::string ForMachines(const DataFile::Shown& value);

/// `kivtools data show`: the rows that the options ask for. Returns an ExitCode. Throws InputError.
int ShowData(Session& session, const std::string& name, const Arguments& arguments);

}  // namespace kivtools
