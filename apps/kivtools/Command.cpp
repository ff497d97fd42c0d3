#include "apps/kivtools/Command.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>

#include "apps/kivtools/Help.h"
#include "apps/kivtools/Pages.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/system/Paths.h"
#include "kivtools/Errors.h"
#include "kivtools/Text.h"

namespace kivtools {
namespace {

// Set before the constructors of other files run.
constinit const Registration* first_registration = nullptr;

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
      session.out.Write(HelpOfCommand(command));
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

/// Does what belongs to no command; messages are told as those of `name`.
template <class Work>
int RunAlone(std::string_view name, const Work& work) {
  Session session(name);
  try {
    work(session);
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
    return RunAlone(name, [](Session& session) { session.out.Write(HelpOfProgram()); });
  }
  if (name == "--version" || name == "-V") {
    return RunAlone(name, [](Session& session) { session.out.Write("kivtools " + session.Lib().Version() + "\n"); });
  }
  if (name == "--pages") {  // for the build and for packages
    return RunAlone(name, [&](Session& /*session*/) {
      if (arguments.size() != 2) {
        throw InputError("one FOLDER has to stand behind it");
      }
      WritePages(PathFromUtf8(arguments[1]));
    });
  }
  if (name == "help") {
    const std::array<std::string, 1> help = {"--help"};
    if (arguments.size() > 2) {
      WriteError("kivtools: help: " + Shown(arguments[2]) + " is one argument too many");
      return kBadInput;
    }
    const Command* const command = FindCommand(arguments[1]);
    return command == nullptr ? kBadInput : RunCommand(*command, help);
  }
  const Command* const command = FindCommand(name);
  return command == nullptr ? kBadInput : RunCommand(*command, arguments.subspan(1));
}

}  // namespace kivtools
