#pragma once

#include <array>
#include <string>
#include <string_view>

#include "apps/kivtools/Command.h"

/// What --help shows, and its pieces, of which the manual pages are made too.
namespace kivtools {

struct ProgramOption {
  std::string_view usage;
  Phrase help;
};
inline constexpr std::array<ProgramOption, 3> kProgramOptions = {{
    {"-h, --help",
     {"this text; after a command, that command's, as help COMMAND shows it",
      "textul acesta; după o comandă, al ei, ca și help COMMAND"}},
    {"-V, --version", {"the version of the library", "versiunea bibliotecii"}},
    {"--lang LANGUAGE",
     {"en or ro, the language of messages; the user's if left out",
      "en sau ro, limba mesajelor; altfel cea a utilizatorului"}},
}};
inline constexpr std::array<std::string_view, 2> kLanguages = {"en", "ro"};
inline constexpr Phrase kProgramSummary = {"Romanian business text and checks on the command line",
                                           "Texte și verificări pentru firme, la linia de comandă"};
inline constexpr Phrase kExitCodes = {
    "Exit code: 0 done, 1 a check said no, 2 bad usage or input, or output that nobody takes.\n\n",
    "Codul de ieșire: 0 gata, 1 o verificare a spus nu, 2 folosire sau date greșite, ori nimeni nu preia scrisul.\n\n"};
inline constexpr Phrase kEnvironment = {
    "The environment variable KIVTOOLS_LIBRARY names the library to load; without it, it is the one that the\n"
    "program was installed with.\n\n",
    "Variabila de mediu KIVTOOLS_LIBRARY numește biblioteca de încărcat; fără ea este cea cu care a fost instalat\n"
    "programul.\n\n"};
inline constexpr Phrase kProgramExample = {"Example:\n  kivtools words 1234.56\n",
                                           "Exemplu:\n  kivtools words 1234,56\n"};

std::string HelpOfProgram();
std::string HelpOfCommand(const Command& command);
/// How a command takes its values; empty for one that takes none.
std::string HelpOfValues(const Command& command);
/// An option as it is typed. Example: "--decimals N".
std::string UsageOf(const Option& option);

}  // namespace kivtools
