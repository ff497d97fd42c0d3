#pragma once

#include <array>
#include <string>
#include <string_view>

#include "apps/kivtools/Command.h"

/// What --help shows, and its pieces, of which the manual pages are made too.
namespace kivtools {

struct ProgramOption {
  std::string_view usage;
  std::string_view help;
};
inline constexpr std::array<ProgramOption, 2> kProgramOptions = {{
    {"-h, --help", "this text; after a command, that command's, as help COMMAND shows it"},
    {"-V, --version", "the version of the library"},
}};
inline constexpr std::string_view kProgramSummary = "Romanian business text and checks on the command line";
inline constexpr std::string_view kExitCodes =
    "Exit code: 0 done, 1 a check said no, 2 bad usage or input, or output that nobody takes.\n\n";
inline constexpr std::string_view kEnvironment =
    "The environment variable KIVTOOLS_LIBRARY names the library to load; without it, it is the one that the\n"
    "program was installed with.\n\n";
inline constexpr std::string_view kProgramExample = "Example:\n  kivtools words 1234.56\n";

std::string HelpOfProgram();
std::string HelpOfCommand(const Command& command);
/// How a command takes its values; empty for one that takes none.
std::string_view HelpOfValues(const Command& command) noexcept;
/// An option as it is typed. Example: "--decimals N".
std::string UsageOf(const Option& option);

}  // namespace kivtools
