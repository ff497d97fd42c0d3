#pragma once

#include <filesystem>
#include <string>

#include "apps/kivtools/Command.h"

/// The manual pages and the completion of bash, made from the tables that --help is made from.
namespace kivtools {

/// The manual page of a command, as troff with the man macros.
std::string ManPageOf(const Command& command);
/// That of the program, which lists the commands.
std::string ManPageOfProgram();

/// A script that completes commands, options and the values that they choose from; whatever else is typed, bash takes
/// for a file's name.
std::string BashCompletion();

/// Writes man/man1/*.1 and bash-completion/completions/kivtools below the folder, as a system keeps them in its share
/// folder. Throws InputError.
void WritePages(const std::filesystem::path& folder);

}  // namespace kivtools
