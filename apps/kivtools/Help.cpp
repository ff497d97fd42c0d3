#include "apps/kivtools/Help.h"

#include "apps/kivtools/Layout.h"

namespace kivtools {
namespace {

constexpr std::string_view kHelpOfValues =
    "Each value is answered on a line of its own; - alone stands for the lines of standard input. With --files or\n"
    "--csv the arguments are FILEs, standard input where there is none. A file of separated values has , or ; or tabs\n"
    "between its fields; a column given by its number has no heading.\n\n";

}  // namespace

std::string HelpOfProgram() {
  std::string help = std::string(kProgramSummary) + ".\n\nUsage: kivtools COMMAND [OPTIONS] [ARGUMENTS]\n\nCommands:\n";
  for (const Command* const command : Commands()) {
    help += "  " + PadEnd(command->name, 18) + std::string(command->summary) + "\n";
  }
  help += "\n";
  for (const auto& [usage, text] : kProgramOptions) {
    help += "  " + PadEnd(usage, 16) + std::string(text) + "\n";
  }
  return help.append("\n").append(kExitCodes).append(kEnvironment).append(kProgramExample);
}

std::string HelpOfCommand(const Command& command) {
  std::string help = std::string(command.summary) + ".\n\nUsage: kivtools " + std::string(command.name) +
                     (command.options.empty() ? " " : " [OPTIONS] ") + std::string(command.arguments) + "\n";
  help += command.options.empty() ? "" : "\nOptions:\n";
  for (const Option& option : command.options) {
    help += "  " + PadEnd(UsageOf(option), 16) + std::string(option.help) + "\n";
  }
  return help.append("\n").append(HelpOfValues(command)).append(command.details);
}

std::string_view HelpOfValues(const Command& command) noexcept {
  return command.takesValues ? kHelpOfValues : std::string_view();
}

std::string UsageOf(const Option& option) {
  return "--" + std::string(option.name) + (option.value.empty() ? "" : " " + std::string(option.value));
}

}  // namespace kivtools
