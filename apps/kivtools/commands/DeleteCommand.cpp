#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/TreeWork.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array kOptions = {Option{"yes", "", {"do not ask", "nu întreabă"}}};

constexpr Phrase kDetails = {
    "Deletes a folder with all that is in it, protected files too. It says on the terminal how much that is and\n"
    "asks; without a terminal it needs --yes. Of a link only the link goes. Root folders, the home folder and\n"
    "what it is in are refused, however they are written. What cannot be deleted is told, and the rest goes on.\n"
    "Exit code: 0 all is deleted, 1 the answer was no, 2 something is left.\n\n"
    "Example:\n"
    "  kivtools delete /tmp/lucru\n",
    "Șterge un dosar cu tot ce este în el, și fișierele protejate. Spune pe terminal cât este de șters și\n"
    "întreabă; fără terminal cere --yes. Dintr-o legătură dispare numai legătura. Dosarele rădăcină, dosarul\n"
    "personal și cele care îl cuprind sunt refuzate, oricum ar fi scrise. Ce nu se poate șterge se spune, iar\n"
    "restul merge mai departe. Codul de ieșire: 0 s-a șters tot, 1 răspunsul a fost nu, 2 a rămas ceva.\n\n"
    "Exemplu:\n"
    "  kivtools delete /tmp/lucru\n"};

/// By what the system says it is: neither links nor "." and ".." make it another one.
bool IsSame(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code unknown;
  return std::filesystem::equivalent(a, b, unknown) && !unknown;
}

void RefuseHome(const std::filesystem::path& root, const std::string& shown) {
  for (const std::filesystem::path& home : HomeFolders()) {
    std::error_code unknown;
    const std::filesystem::path known = std::filesystem::canonical(home, unknown);
    if (unknown) {
      continue;
    }
    for (std::filesystem::path at = known; at.has_relative_path(); at = at.parent_path()) {
      if (IsSame(root, at)) {
        throw InputError(at == known ? Say({"{0} is the home folder", "{0} este dosarul personal"}, shown)
                                     : Say({"{0} has the home folder in it", "{0} cuprinde dosarul personal"}, shown));
      }
    }
  }
}

void RefuseProtected(const std::filesystem::path& root, const std::string& shown) {
  if (!root.has_relative_path() || IsSame(root, std::filesystem::absolute(root).root_path())) {
    throw InputError(Say({"{0} is a root folder", "{0} este un dosar rădăcină"}, shown));
  }
  RefuseHome(root, shown);
}

std::string Size(const TreeWork::Counts& counts) {
  return Counted(counts.files, kFiles).Text() + ", " + Counted(counts.folders, kFolders).Text() + ", " +
         Counted(counts.bytes, kBytes).Text();
}

/// What is there, as far as it can be read; what cannot is told when it cannot be deleted.
std::string SizeOf(const Library& library, const std::filesystem::path& root) {
  const TreeWork work(library, [](const Said&) {});
  library.MeasureTree(root);
  return Size(work.Count());
}

bool IsYes(std::string_view question) {
  WriteAll(StandardStream::Error, question);
  std::string answer;
  InputStream input = InputStream::Standard();
  for (char letter = '\0'; letter != '\n';) {
    if (input.Read(&letter, 1) == 0) {
      WriteAll(StandardStream::Error, "\n");
      break;
    }
    if (letter != '\n' && letter != '\r') {
      answer.push_back(letter);
    }
  }
  const bool romanian = CurrentSpeech().language == Language::Romanian;
  return answer == "y" || answer == "Y" || answer == "yes" ||
         (romanian && (answer == "d" || answer == "D" || answer == "da"));
}

int RunDelete(Session& session, const Arguments& arguments) {
  const std::string shown = ShownName(arguments.Values().front());
  const std::filesystem::path root = GivenPath(arguments.Values().front(), "ROOT");
  RefuseProtected(root, shown);
  const Library& library = session.Lib();
  const std::string size = SizeOf(library, root);
  if (!arguments.Has("yes")) {
    if (!TerminalWidth(StandardStream::Input) || !TerminalWidth(StandardStream::Error)) {
      throw InputError(Say({"{0} ({1}) is deleted with --yes only: there is no terminal to ask on",
                            "{0} ({1}) se șterge numai cu --yes: nu este un terminal pe care să se întrebe"},
                           shown, size));
    }
    if (!IsYes(Say({"Delete {0} ({1})? [y/N] ", "Se șterge {0} ({1})? [d/N] "}, shown, size))) {
      session.out.Write(Say({"nothing is deleted\n", "nu s-a șters nimic\n"}));
      return kCheckSaidNo;
    }
  }
  const TreeWork work(library, [&](const Said& message) { session.Report(message); });
  library.DeleteTree(root);
  session.out.Write(Say({"{0} deleted\n", "s-au șters: {0}\n"}, Size(work.Count())));
  return work.Count().failures == 0 ? kDone : kBadInput;
}

constexpr Command kCommand = {
    "delete", {"Delete a folder tree", "Șterge un dosar cu tot ce cuprinde"}, "ROOT", 1, 1, kOptions, kDetails,
    RunDelete};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
