#include <array>
#include <limits>
#include <optional>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/TreeWork.h"
#include "apps/kivtools/system/Console.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 3> kOptions = {{
    {"depth", "N", {"no folders deeper than N; 0 is ROOT alone", "fără dosare mai adânci de N; 0 este numai ROOT"}},
    {"json", "", {"for machines: an array of the paths", "pentru programe: un tablou cu căile"}},
    {"null",
     "",
     {"for machines: each path ends with a zero byte, not with the line",
      "pentru programe: fiecare cale se încheie cu un octet zero, nu cu rândul"}},
}};

constexpr Phrase kDetails = {
    "Prints the paths of the files in ROOT and below it, in the file system's order. With one EXT or more they\n"
    "are those with such an extension, written without the dot, in small or capital letters; an empty one takes\n"
    "files without any. A link is a file here, and nobody goes where it leads. What cannot be read is told at the\n"
    "end.\n\n"
    "Examples:\n"
    "  kivtools list /date dbf mdb\n"
    "  kivtools list --null /date tmp | xargs -0 ls -l\n",
    "Scrie căile fișierelor din ROOT și de sub el, în ordinea sistemului de fișiere. Cu unul sau mai multe EXT\n"
    "sunt cele cu o asemenea extensie, scrisă fără punct, cu litere mici sau mari; una goală înseamnă fișierele\n"
    "fără extensie. O legătură este aici un fișier, iar unde duce ea nu se merge. Ce nu se poate citi se spune la\n"
    "sfârșit.\n\n"
    "Exemple:\n"
    "  kivtools list /date dbf mdb\n"
    "  kivtools list --null /date tmp | xargs -0 ls -l\n"};

/// Writes a path as the options have it. A person's terminal gets no control characters.
class PathWriter {
 public:
  PathWriter(Output& out, const Arguments& arguments)
      : out_(out),
        json_(arguments.Has("json")),
        end_(1, arguments.Has("null") ? '\0' : '\n'),
        seen_(!arguments.Has("null") && TerminalWidth(StandardStream::Output)) {}

  void Write(const std::string& path) {
    if (json_) {
      out_.Write((first_ ? "[" : ",\n ") + JsonString(path));
    } else {
      out_.Write((seen_ && WhyNotPrintable(path) != nullptr ? Shown(path, path.size()) : path) + end_);
    }
    first_ = false;
  }
  void Finish() {
    if (json_) {
      out_.Write(first_ ? "[]\n" : "]\n");
    }
    out_.Flush();
  }

 private:
  Output& out_;
  bool json_;
  std::string end_;
  bool seen_;
  bool first_ = true;
};

int RunList(Session& session, const Arguments& arguments) {
  const auto& values = arguments.Values();
  const std::filesystem::path root = GivenPath(values.front(), "ROOT");
  std::vector<std::string> extensions(values.begin() + 1, values.end());
  if (extensions.empty()) {
    extensions.emplace_back("*");
  }
  std::optional<std::int32_t> depth;
  if (const auto text = arguments.ValueOf("depth")) {
    depth = ReadWholeNumber(*text, 0, std::numeric_limits<std::int32_t>::max(), {"a depth", "o adâncime"});
  }
  if (arguments.Has("json") && arguments.Has("null")) {
    throw InputError(
        Say({"\"--json\" and \"--null\" do not go together", "\"--json\" și \"--null\" nu merg împreună"}));
  }
  std::vector<Said> failures;
  PathWriter writer(session.out, arguments);
  {
    const TreeWork work(session.Lib(), [&](const Said& message) { failures.push_back(message); });
    session.Lib().ForEachFile(root, extensions, depth, [&](const std::string& path) { writer.Write(path); });
  }
  writer.Finish();
  for (const Said& failure : failures) {
    session.Report(failure);
  }
  return failures.empty() ? kDone : kBadInput;
}

constexpr Command kCommand = {
    "list",          {"List the files of a folder tree", "Enumeră fișierele unui dosar și de sub el"},
    "ROOT [EXT...]", 1,
    kAnyNumber,      kOptions,
    kDetails,        RunList};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
