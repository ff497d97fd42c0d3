#include "apps/kivtools/Pages.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <span>
#include <system_error>

#include "apps/kivtools/Help.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Lines.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

/// A line of text for troff, where "-" is a hyphen, "\" begins a request and so do "." and "'" in front.
std::string Troff(std::string_view text) {
  std::string line = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char character : text) {
    switch (character) {
      case '\\':
        line += "\\e";
        break;
      case '-':
        line += "\\-";
        break;
      default:
        line += character;
    }
  }
  return line;
}

/// The text with its first letter small, as in a list of names and what they are.
std::string WithSmallBegin(std::string_view text) {
  std::string small(text);
  small.front() = kiv::ascii::ToLower(small.front());
  return small;
}

std::string Heading(const std::string& name, std::string_view summary) {
  std::string title = name;
  std::ranges::transform(title, title.begin(), kiv::ascii::ToUpper<char>);
  return ".TH " + Troff(title) + " 1 \"\" kivtools \"User Commands\"\n.SH NAME\n" + Troff(name) + " \\- " +
         Troff(WithSmallBegin(summary)) + "\n.SH SYNOPSIS\n";
}

/// A term and what it means.
std::string Tagged(std::string_view term, std::string_view meaning) {
  return ".TP\n.B " + Troff(term) + "\n" + Troff(meaning) + "\n";
}

/// Paragraphs as --help shows them: what is set in by two blanks keeps its lines, and examples get a section.
std::string Paragraphs(std::string_view text) {
  std::string page;
  bool asItIs = false;
  bool paragraph = false;
  const auto keepLines = [&](bool keep) {
    page += asItIs == keep ? "" : keep ? ".nf\n" : ".fi\n";
    asItIs = keep;
  };
  ForEachLine(text, [&](std::string_view line) {
    if (line.empty()) {
      paragraph = true;
      return;
    }
    const bool setIn = line.starts_with("  ");
    const bool examples = line == "Example:" || line == "Examples:";
    keepLines(setIn && !examples);
    if (examples) {
      page += ".SH EXAMPLES\n";
    } else {
      page += paragraph ? ".PP\n" : "";
      page += Troff(setIn ? line.substr(2) : line) + "\n";
    }
    paragraph = false;
  });
  keepLines(false);
  return page;
}

std::string SeeAlso(std::string_view page) {
  return ".SH SEE ALSO\n.BR " + Troff(page) + " (1)\n";
}

std::string Joined(std::span<const std::string_view> words) {
  std::string joined;
  for (const std::string_view word : words) {
    joined += (joined.empty() ? "" : " ") + std::string(word);
  }
  return joined;
}

/// The lines of the case of a command.
std::string CompletionOf(const Command& command) {
  std::string options;
  std::string values;  // what is in front of a value
  for (const Option& option : command.options) {
    const std::string name = "--" + std::string(option.name);
    options += name + " ";
    if (!option.value.empty()) {
      values += "        " + name + ") takes=1 words='" + Joined(option.choices) + "' ;;\n";
    }
  }
  std::string lines = "    " + std::string(command.name) + ")\n      options='" + options + "--help --lang'\n";
  if (!command.firstChoices.empty()) {
    lines += "      first='" + Joined(command.firstChoices) + "'\n";
  }
  if (!values.empty()) {
    lines += "      case $before in\n" + values + "      esac\n";
  }
  return lines + "      ;;\n";
}

void WriteFile(const std::filesystem::path& file, const std::string& text) {
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  if (error) {
    throw SystemError(
        Say({"{0}: cannot be created", "{0}: nu se poate crea"}, ShownName(Utf8FromPath(file.parent_path()))), error);
  }
  errno = 0;
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (const int code = errno; !out) {
    throw SystemError(Say({"{0}: cannot be written", "{0}: nu se poate scrie"}, ShownName(Utf8FromPath(file))),
                      std::error_code(code, std::generic_category()));
  }
}

}  // namespace

std::string ManPageOf(const Command& command) {
  std::string page = Heading("kivtools-" + std::string(command.name), Say(command.summary)) + ".B kivtools " +
                     Troff(command.name) + "\n" + (command.options.empty() ? "" : "[OPTIONS]\n") +
                     Troff(command.arguments) + "\n.SH DESCRIPTION\n";
  const Said said = Say(command.details);
  const std::string_view details = said;
  const std::size_t examples = std::min(details.find("\nExample"), details.size());
  page += Paragraphs(HelpOfValues(command)) + (command.takesValues ? ".PP\n" : "") +
          Paragraphs(details.substr(0, examples)) + ".SH OPTIONS\n";
  for (const Option& option : command.options) {
    page += Tagged(UsageOf(option), Say(option.help));
  }
  return page + Tagged("-h, --help", "show the same help on the terminal") + Paragraphs(details.substr(examples)) +
         SeeAlso("kivtools");
}

std::string ManPageOfProgram() {
  std::string page = Heading("kivtools", Say(kProgramSummary)) +
                     ".B kivtools\nCOMMAND [OPTIONS] [ARGUMENTS]\n.SH DESCRIPTION\nEach command has a page of its own, "
                     "such as\n.BR kivtools\\-words (1).\n.SH COMMANDS\n";
  for (const Command* const command : Commands()) {
    page += Tagged(command->name, WithSmallBegin(Say(command->summary)));
  }
  page += ".SH OPTIONS\n";
  for (const auto& [usage, help] : kProgramOptions) {
    page += Tagged(usage, Say(help));
  }
  return page + ".SH EXIT STATUS\n" + Paragraphs(Say(kExitCodes)) + ".SH ENVIRONMENT\n" +
         Paragraphs(Say(kEnvironment)) + Paragraphs(Say(kProgramExample)) + SeeAlso("kivtools-words");
}

std::string BashCompletion() {
  std::string commands;
  std::string cases;
  for (const Command* const command : Commands()) {
    commands += std::string(command->name) + " ";
    cases += CompletionOf(*command);
  }
  return "# completion of bash for kivtools, written by kivtools --pages\n"
         "_kivtools() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local commands='" +
         commands +
         "help' options='' first='' words='' takes='' command='' at\n"
         "  # bash takes the = of --form=NAME for a word\n"
         "  if [[ $current == = ]]; then\n"
         "    current=''\n"
         "  elif [[ $before == = ]]; then\n"
         "    before=${COMP_WORDS[COMP_CWORD-2]}\n"
         "  fi\n"
         "  for ((at = 1; at < COMP_CWORD; ++at)); do\n"
         "    if [[ ${COMP_WORDS[at]} != --lang ]]; then\n"
         "      command=${COMP_WORDS[at]}\n"
         "      break\n"
         "    fi\n"
         "    ((++at))\n"
         "    [[ ${COMP_WORDS[at]-} != = ]] || ((++at))\n"
         "  done\n"
         "  case $command in\n"
         "    help) first=$commands ;;\n" +
         cases +
         "  esac\n"
         "  if [[ $before == --lang ]]; then\n"
         "    words='" +
         Joined(kLanguages) +
         "'\n"
         "  elif [[ ! $command ]]; then\n"
         "    words=\"$commands --help --version --lang\"\n"
         "  elif [[ ! $takes && $current == -* ]]; then\n"
         "    words=$options\n"
         "  elif [[ ! $takes ]] && ((COMP_CWORD == at + 1)); then\n"
         "    words=$first\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "}\n"
         "complete -o default -F _kivtools kivtools\n";
}

void WritePages(const std::filesystem::path& folder) {
  const auto pages = folder / "man" / "man1";
  WriteFile(pages / "kivtools.1", ManPageOfProgram());
  for (const Command* const command : Commands()) {
    WriteFile(pages / ("kivtools-" + std::string(command->name) + ".1"), ManPageOf(*command));
  }
  WriteFile(folder / "bash-completion" / "completions" / "kivtools", BashCompletion());
}

}  // namespace kivtools
