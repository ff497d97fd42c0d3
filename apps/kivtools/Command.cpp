#include "apps/kivtools/Command.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>
#include <optional>

#include "apps/kivtools/Help.h"
#include "apps/kivtools/Pages.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/UserSpeech.h"
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
    session.Report(Say({"line {0}: {1}", "rândul {0}: {1}"}, error.Line(), error.what()));
  } catch (const kiv::Error& error) {
    session.Report(AsItIs(kiv::ToUtf8(error.what())));
  } catch (const std::exception& error) {
    session.Report(AsItIs(error.what()));
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
  WriteError(Say({"kivtools: {0} is not a command{1} kivtools --help lists them",
                  "kivtools: {0} nu este o comandă{1} kivtools --help le enumeră"},
                 Shown(name), meant.empty() ? ";" : meant));
  return nullptr;
}

/// Takes --lang out of the arguments, wherever it stands, and has the program speak as it says. Throws InputError.
std::vector<std::string> TakeLanguage(std::span<const std::string> given) {
  constexpr std::string_view kOption = "--lang";
  std::vector<std::string> rest;
  std::optional<std::string> language;
  SetSpeech(UserSpeech());
  for (; !given.empty() && given.front() != "--"; given = given.subspan(1)) {
    const std::string& argument = given.front();
    if (argument != kOption && !argument.starts_with("--lang=")) {
      rest.push_back(argument);
      continue;
    }
    if (language) {
      throw InputError(IsSecond(argument));
    }
    if (argument != kOption) {
      language = argument.substr(kOption.size() + 1);
    } else if (given.size() > 1) {
      given = given.subspan(1);
      language = given.front();
    } else {
      throw InputError(NeedsBehind(argument, "LANGUAGE"));
    }
    const auto* const known = std::ranges::find(kLanguages, *language);
    if (known == kLanguages.end()) {
      throw InputError(Say({"{0} is not a language: en or ro", "{0} nu este o limbă: en sau ro"}, Shown(*language)));
    }
    SetSpeech({*known == "ro" ? Language::Romanian : Language::English, CurrentSpeech().diacritics});
  }
  rest.insert(rest.end(), given.begin(), given.end());
  return rest;
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
    session.Report(AsItIs(error.what()));
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

int RunProgram(std::span<const std::string> given) {
  std::vector<std::string> kept;
  try {
    kept = TakeLanguage(given);
  } catch (const InputError& error) {
    WriteError(std::string("kivtools: ") + error.what());
    return kBadInput;
  }
  const std::span<const std::string> arguments(kept);
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
        throw InputError(Say({"one FOLDER has to stand behind it", "după ea trebuie să stea un FOLDER"}));
      }
      SetSpeech({});  // the pages are English
      WritePages(PathFromUtf8(arguments[1]));
    });
  }
  if (name == "help") {
    const std::array<std::string, 1> help = {"--help"};
    if (arguments.size() > 2) {
      WriteError("kivtools: help: " + OneTooMany(arguments[2]).Text());
      return kBadInput;
    }
    const Command* const command = FindCommand(arguments[1]);
    return command == nullptr ? kBadInput : RunCommand(*command, help);
  }
  const Command* const command = FindCommand(name);
  return command == nullptr ? kBadInput : RunCommand(*command, arguments.subspan(1));
}

}  // namespace kivtools
