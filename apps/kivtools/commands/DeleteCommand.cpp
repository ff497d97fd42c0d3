#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/TreeWork.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array kOptions = {Option{"yes", "", "do not ask"}};

constexpr std::string_view kDetails =
    "Deletes a folder with all that is in it, protected files too. It says on the terminal how much that is and asks; "
    "without\n"
    "a terminal it needs --yes. Of a link only the link goes. Root folders, the home folder and what it is in are "
    "refused,\n"
    "however they are written. What cannot be deleted is told, and the rest goes on.\n"
    "Exit code: 0 all is deleted, 1 the answer was no, 2 something is left.\n\n"
    "Example:\n"
    "  kivtools delete /tmp/lucru\n";

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
        throw InputError(shown + (at == known ? " is the home folder" : " has the home folder in it"));
      }
    }
  }
}

void RefuseProtected(const std::filesystem::path& root, const std::string& shown) {
  if (!root.has_relative_path() || IsSame(root, std::filesystem::absolute(root).root_path())) {
    throw InputError(shown + " is a root folder");
  }
  RefuseHome(root, shown);
}

std::string Size(const TreeWork::Counts& counts) {
  return Counted(counts.files, "file") + ", " + Counted(counts.folders, "folder") + ", " +
         Counted(counts.bytes, "byte");
}

/// What is there, as far as it can be read; what cannot is told when it cannot be deleted.
std::string SizeOf(const Library& library, const std::filesystem::path& root) {
  const TreeWork work(library, [](const std::string&) {});
  library.MeasureTree(root);
  return Size(work.Count());
}

bool IsYes(const std::string& question) {
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
  return answer == "y" || answer == "Y" || answer == "yes";
}

int RunDelete(Session& session, const Arguments& arguments) {
  const std::string shown = ShownName(arguments.Values().front());
  const std::filesystem::path root = GivenPath(arguments.Values().front(), "ROOT");
  RefuseProtected(root, shown);
  const Library& library = session.Lib();
  const std::string size = SizeOf(library, root);
  if (!arguments.Has("yes")) {
    if (!TerminalWidth(StandardStream::Input) || !TerminalWidth(StandardStream::Error)) {
      throw InputError(shown + " (" + size + ") is deleted with --yes only: there is no terminal to ask on");
    }
    if (!IsYes("Delete " + shown + " (" + size + ")? [y/N] ")) {
      session.out.Write("nothing is deleted\n");
      return kCheckSaidNo;
    }
  }
  const TreeWork work(library, [&](const std::string& message) { session.Report(message); });
  library.DeleteTree(root);
  session.out.Write(Size(work.Count()) + " deleted\n");
  return work.Count().failures == 0 ? kDone : kBadInput;
}

constexpr Command kCommand = {"delete", "Delete a folder tree", "ROOT", 1, 1, kOptions, kDetails, RunDelete};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
