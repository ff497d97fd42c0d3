#include "apps/kivtools/Help.h"

#include "apps/kivtools/Layout.h"

namespace kivtools {
namespace {

constexpr Phrase kHelpOfValues = {
    "Each value is answered on a line of its own; - alone stands for the lines of standard input. With --files or\n"
    "--csv the arguments are FILEs, standard input where there is none. A file of separated values has , or ; or tabs\n"
    "between its fields; a column given by its number has no heading.\n\n",
    "Fiecare valoare primește răspunsul pe un rând al ei; - singur înseamnă rândurile intrării standard. Cu --files\n"
    "sau --csv argumentele sunt fișiere (FILE), iar fără niciunul se citește intrarea standard. Într-un fișier\n"
    "de valori separate, câmpurile sunt despărțite prin , sau ; sau tabulatori; o coloană dată prin numărul ei nu\n"
    "are cap de tabel.\n\n"};

}  // namespace

std::string HelpOfProgram() {
  std::string help = Say(kProgramSummary).Text();
  help += Say({".\n\nUsage: kivtools COMMAND [OPTIONS] [ARGUMENTS]\n\nCommands:\n",
               ".\n\nFolosire: kivtools COMMAND [OPTIONS] [ARGUMENTS]\n\nComenzi:\n"});
  for (const Command* const command : Commands()) {
    help += "  " + PadEnd(command->name, 18) + Say(command->summary).Text() + "\n";
  }
  help += "\n";
  for (const auto& [usage, text] : kProgramOptions) {
    help += "  " + PadEnd(usage, 17) + Say(text).Text() + "\n";
  }
  return help.append("\n").append(Say(kExitCodes)).append(Say(kEnvironment)).append(Say(kProgramExample));
}

std::string HelpOfCommand(const Command& command) {
  std::string help =
      Say({"{0}.\n\nUsage: kivtools {1}{2}{3}\n", "{0}.\n\nFolosire: kivtools {1}{2}{3}\n"}, command.summary,
          command.name, command.options.empty() ? " " : " [OPTIONS] ", command.arguments)
          .Text();
  if (!command.options.empty()) {
    help += Say({"\nOptions:\n", "\nOpțiuni:\n"});
  }
  std::size_t width = 16;
  for (const Option& option : command.options) {
    width = std::max(width, UsageOf(option).size() + 2);
  }
  for (const Option& option : command.options) {
    help += "  " + PadEnd(UsageOf(option), width) + Say(option.help).Text() + "\n";
  }
  return help.append("\n").append(HelpOfValues(command)).append(Say(command.details));
}

std::string HelpOfValues(const Command& command) {
  return command.takesValues ? Say(kHelpOfValues).Text() : std::string();
}

std::string UsageOf(const Option& option) {
  return "--" + std::string(option.name) + (option.value.empty() ? "" : " " + std::string(option.value));
}

}  // namespace kivtools
