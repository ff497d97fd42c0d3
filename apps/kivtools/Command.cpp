#include "apps/kivtools/Command.h"

#include <algorithm>
#include <exception>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
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
         "\n  --help     this text; after a command, that command's\n"
         "  --version  the version of the library\n\n"
         "Exit code: 0 done, 1 a check said no, 2 bad usage or input.\n\n"
         "The environment variable KIVTOOLS_LIBRARY names the library to load; without it, it is the one that the\n"
         "program was installed with.\n\n"
         "Example:\n  kivtools words 1234.56\n";
}

std::string CommandHelp(const Command& command) {
  std::string help = std::string(command.summary) + ".\n\nUsage: kivtools " + std::string(command.name) +
                     (command.options.empty() ? " " : " [OPTIONS] ") + std::string(command.arguments) + "\n";
  help += command.options.empty() ? "" : "\nOptions:\n";
  for (const Option& option : command.options) {
    const std::string usage = "--" + std::string(option.name) + " " + std::string(option.value);
    help += "  " + PadEnd(usage, 16) + std::string(option.help) + "\n";
  }
  return help + "\n" + std::string(command.details);
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
  } catch (const LineError& error) {
    session.Report("line " + std::to_string(error.Line()) + ": " + error.what());
  } catch (const kiv::Error& error) {
    session.Report(kiv::ToUtf8(error.what()));
  } catch (const std::exception& error) {
    session.Report(error.what());
  }
  return kBadInput;
}

int RunProgramOption(const std::string& option) {
  Session session(option);
  try {
    session.out.Write(option == "--version" ? "kivtools " + session.Lib().Version() + "\n" : ProgramHelp());
    session.out.Flush();
    return kDone;
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
  if (arguments.empty()) {
    WriteError("kivtools: no command is given; kivtools --help lists them");
    return kBadInput;
  }
  const std::string& name = arguments.front();
  if (name == "--help" || name == "-h" || name == "--version") {
    return RunProgramOption(name);
  }
  const std::vector<const Command*> commands = Commands();
  const auto found = std::ranges::find(commands, name, &Command::name);
  if (found == commands.end()) {
    WriteError("kivtools: " + Shown(name) + " is not a command; kivtools --help lists them");
    return kBadInput;
  }
  return RunCommand(**found, arguments.subspan(1));
}

}  // namespace kivtools
