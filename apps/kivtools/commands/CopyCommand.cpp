#include <algorithm>
#include <array>
#include <set>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/ProgressLabel.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/TreeWork.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr std::string_view kSkip = "skip";
constexpr std::array kOptions = {Option{kSkip,
                                        "TEXT",
                                        {"no files of folders whose path, SRC included, holds TEXT",
                                         "fără fișierele din dosare cu TEXT în cale, SRC inclus"}}};

constexpr Phrase kDetails = {
    "Copies the files in SRC and below it to the folder DST, which is made if it is missing, and all the folders.\n"
    "With one EXT or more the files are those with such an extension, written without the dot, in small or\n"
    "capital letters; an empty one takes files without any. Former files are replaced, each when its copy is\n"
    "whole; links are copied as links. For --skip small and capital letters are the same, and a separator ends\n"
    "each folder's path.\n"
    "What cannot be copied is told, and the rest goes on. Exit code: 0 all is copied, 2 something is not.\n\n"
    "Examples:\n"
    "  kivtools copy /date /salvare\n"
    "  kivtools copy /date /salvare dbf mdb --skip /arhiva/\n",
    "Copiază fișierele din SRC și de sub el în dosarul DST, care se creează dacă lipsește, cu toate dosarele. Cu\n"
    "unul sau mai multe EXT sunt cele cu o asemenea extensie, scrisă fără punct, cu litere mici sau mari; una\n"
    "goală înseamnă fișierele fără extensie. Fișierele de dinainte se înlocuiesc, fiecare când copia lui este\n"
    "întreagă; legăturile se copiază ca legături. Pentru --skip literele mici și mari sunt tot una, iar calea\n"
    "fiecărui dosar se încheie cu un separator. Ce nu se poate copia se spune, iar restul merge mai departe.\n"
    "Codul de ieșire: 0 s-a copiat tot, 2 ceva nu.\n\n"
    "Exemple:\n"
    "  kivtools copy /date /salvare\n"
    "  kivtools copy /date /salvare dbf mdb --skip /arhiva/\n"};

std::filesystem::path SourceFolder(const std::string& argument) {
  std::filesystem::path source = GivenPath(argument, "SRC");
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(source, error);
  if (!std::filesystem::exists(status)) {
    throw SystemError(CannotBeOpened(ShownName(argument)), error);
  }
  if (!std::filesystem::is_directory(status)) {
    throw InputError(Say({"{0} is not a folder", "{0} nu este un dosar"}, ShownName(argument)));
  }
  return source;
}

/// Every extension that there is: a copy that skips folders knows no word for all of them.
std::vector<std::string> ExtensionsIn(const Library& library, const std::filesystem::path& source) {
  std::set<std::string> extensions;
  library.ForEachFile(source, {"*"}, std::nullopt, [&](const std::string& path) {
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    const std::size_t dot = name.rfind('.');
    extensions.insert(dot == std::string::npos ? "" : LowerName(name.substr(dot + 1)));
  });
  return {extensions.begin(), extensions.end()};
}

std::vector<std::string> WantedExtensions(const Library& library, const std::filesystem::path& source,
                                          const Arguments& arguments) {
  std::vector<std::string> extensions(arguments.Values().begin() + 2, arguments.Values().end());
  for (std::string& extension : extensions) {
    extension = LowerName(extension);
  }
  if (!extensions.empty() && std::ranges::find(extensions, "*") == extensions.end()) {
    return extensions;
  }
  return arguments.Has(kSkip) ? ExtensionsIn(library, source) : std::vector<std::string>{"*"};
}

int RunCopy(Session& session, const Arguments& arguments) {
  const std::filesystem::path destination = GivenPath(arguments.Values()[1], "DST");
  const std::filesystem::path source = SourceFolder(arguments.Values()[0]);
  std::error_code different;
  if (std::filesystem::equivalent(source, destination, different)) {
    throw InputError(Say({"{0} is SRC itself", "{0} este chiar SRC"}, ShownName(arguments.Values()[1])));
  }
  const Library& library = session.Lib();
  const std::vector<std::string> extensions = WantedExtensions(library, source, arguments);
  TreeWork::Counts counts;
  {
    Progress progress(std::nullopt);
    ProgressLabel label(library, progress);
    const TreeWork work(
        library, [&](const Said& message) { session.Report(message); }, &progress);
    library.CopyTree(source, destination, extensions, arguments.ValueOf(kSkip), label.Control(),
                     ProgressLabel::kMostWidth);
    counts = work.Count();
  }
  session.out.Write(
      Say({"{0}, {1} copied\n", "copiate: {0}, {1}\n"}, Counted(counts.files, kFiles), Counted(counts.bytes, kBytes)));
  return counts.failures == 0 ? kDone : kBadInput;
}

constexpr Command kCommand = {"copy",
                              {"Copy a folder tree", "Copiază un dosar cu tot ce cuprinde"},
                              "SRC DST [EXT...]",
                              2,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunCopy};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
