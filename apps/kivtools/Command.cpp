#include "apps/kivtools/Command.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/input/BlockReader.h"
#include "kivtools/Errors.h"
#include "kivtools/Text.h"

namespace kivtools {
namespace {

// Set before the constructors of other files run.
constinit const Registration* first_registration = nullptr;

std::string ProgramHelp() {
  std::string help =
      "Romanian business text and checks on the command line.\n\n"
      "Usage: kivtools COMMAND [OPTIONS] [ARGUMENTS]\n\nCommands:\n";
  for (const Command* const command : Commands()) {
    help += "  " + PadEnd(command->name, 18) + std::string(command->summary) + "\n";
  }
  return help +
         "\n  -h, --help      this text; after a command, that command's, as help COMMAND shows it\n"
         "  -V, --version   the version of the library\n\n"
         "Exit code: 0 done, 1 a check said no, 2 bad usage or input, or output that nobody takes.\n\n"
         "The environment variable KIVTOOLS_LIBRARY names the library to load; without it, it is the one that the\n"
         "program was installed with.\n\n"
         "Example:\n  kivtools words 1234.56\n";
}

constexpr std::string_view kHelpOfValues =
    "Each value is answered on a line of its own; - alone stands for the lines of standard input. With --files or "
    "--csv\n"
    "the arguments are FILEs, standard input where there is none. A file of separated values has , or ; or tabs "
    "between\n"
    "its fields; a column given by its number has no heading.\n\n";

std::string CommandHelp(const Command& command) {
  std::string help = std::string(command.summary) + ".\n\nUsage: kivtools " + std::string(command.name) +
                     (command.options.empty() ? " " : " [OPTIONS] ") + std::string(command.arguments) + "\n";
  help += command.options.empty() ? "" : "\nOptions:\n";
  for (const Option& option : command.options) {
    const std::string usage = "--" + std::string(option.name) + " " + std::string(option.value);
    help += "  " + PadEnd(usage, 16) + std::string(option.help) + "\n";
  }
  const std::string_view ofValues = command.takesValues ? kHelpOfValues : std::string_view();
  return help + "\n" + std::string(ofValues) + std::string(command.details);
}

bool AsksForHelp(std::span<const std::string> arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find_if(arguments.begin(), end,
                      [](const std::string& argument) { return argument == "--help" || argument == "-h"; }) != end;
}

int RunCommand(const Command& command, std::span<const std::string> given) {
  Session session(command.name);
  try {
    int result = kDone;
    if (AsksForHelp(given)) {
      session.out.Write(CommandHelp(command));
    } else {
      result = command.run(session, Arguments(command, given));
    }
    session.out.Flush();
    return result;
  } catch (const ReaderEnded&) {
    return kBadInput;
  } catch (const LineError& error) {
    session.Report("line " + std::to_string(error.Line()) + ": " + error.what());
  } catch (const kiv::Error& error) {
    session.Report(kiv::ToUtf8(error.what()));
  } catch (const std::exception& error) {
    session.Report(error.what());
  }
  return kBadInput;
}

/// Null, and told, where there is none of that name.
const Command* FindCommand(const std::string& name) {
  const std::vector<const Command*> commands = Commands();
  const auto found = std::ranges::find(commands, name, &Command::name);
  if (found != commands.end()) {
    return *found;
  }
  std::vector<std::string_view> names = {"help"};
  std::ranges::transform(commands, std::back_inserter(names), &Command::name);
  const std::string meant = DidYouMean(name, names);
  WriteError("kivtools: " + Shown(name) + " is not a command" + (meant.empty() ? ";" : meant) +
             " kivtools --help lists them");
  return nullptr;
}

int RunProgramOption(const std::string& option) {
  Session session(option);
  try {
    session.out.Write(option == "--version" ? "kivtools " + session.Lib().Version() + "\n" : ProgramHelp());
    session.out.Flush();
    return kDone;
  } catch (const ReaderEnded&) {
    return kBadInput;
  } catch (const std::exception& error) {
    session.Report(error.what());
    return kBadInput;
  }
}

}  // namespace

Registration::Registration(const Command& command) noexcept : command_(command), next_(first_registration) {
  first_registration = this;
}

std::vector<const Command*> Commands() {
  std::vector<const Command*> commands;
  for (const Registration* at = first_registration; at != nullptr; at = at->next_) {
    commands.push_back(&at->command_);
  }
  std::ranges::sort(commands, {}, &Command::name);
  return commands;
}

int RunProgram(std::span<const std::string> arguments) {
  const std::string name = arguments.empty() ? "--help" : arguments.front();
  if (name == "--help" || name == "-h" || (name == "help" && arguments.size() == 1)) {
    return RunProgramOption("--help");
  }
  if (name == "--version" || name == "-V") {
    return RunProgramOption("--version");
  }
  if (name == "help") {
    const std::array<std::string, 1> help = {"--help"};
    const Command* const command = arguments.size() == 2 ? FindCommand(arguments[1]) : nullptr;
    if (arguments.size() > 2) {
      WriteError("kivtools: help: " + Shown(arguments[2]) + " is one argument too many");
    }
    return command == nullptr ? kBadInput : RunCommand(*command, help);
  }
  const Command* const command = FindCommand(name);
  return command == nullptr ? kBadInput : RunCommand(*command, arguments.subspan(1));
}

}  // namespace kivtools
