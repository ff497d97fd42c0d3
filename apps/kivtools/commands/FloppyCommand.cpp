#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{
    {"root",
     "FOLDER",
     {"the folder that stands for drive A: (elsewhere than on Windows)",
      "dosarul care ține locul unității A: (în afara Windows)"}},
}};

constexpr Phrase kDetails = {
    "state prints what drive A: holds: \"ready\", \"unreadable\" or \"no diskette\". copy puts files onto the "
    "diskette;\n"
    "with several files, or where DST ends with a separator or is A: alone, DST is a folder. Every copy is read\n"
    "back. What has to be asked is asked on standard error and answered on standard input with a word or its\n"
    "first letter; where the input ends, the answer is no.\n\n"
    "Exit code: 0 ready, or copied; 1 not ready, or given up; 2 bad usage, or a copy that failed.\n\n"
    "Examples:\n"
    "  kivtools floppy copy D100.xml D112.xml A:\n"
    "  kivtools floppy copy --root /media/floppy D100.xml A:/D100.xml\n",
    "state spune ce este în unitatea A: \"ready\" (gata), \"unreadable\" (nu se poate citi) sau \"no diskette\" "
    "(nicio\n"
    "dischetă). copy pune fișiere pe dischetă; cu mai multe fișiere, sau unde DST se încheie cu un separator ori\n"
    "este numai A:, DST este un dosar. Fiecare copie se recitește.\n"
    "Ce este de întrebat se întreabă la ieșirea pentru erori; se răspunde la intrarea standard cu un cuvânt sau\n"
    "cu prima lui literă, iar unde intrarea s-a încheiat, răspunsul este nu.\n\n"
    "Codul de ieșire: 0 gata, sau copiat; 1 nu este gata, sau s-a renunțat; 2 folosire greșită, sau o copie\n"
    "nereușită.\n\n"
    "Exemple:\n"
    "  kivtools floppy copy D100.xml D112.xml A:\n"
    "  kivtools floppy copy --root /media/floppy D100.xml A:/D100.xml\n"};

/// What is answered on standard input, a line at a time.
class Answers {
 public:
  /// The next line without its end; nothing where the input has ended.
  std::optional<std::string> Next() {
    std::size_t end = read_.find('\n');
    while (end == std::string::npos) {
      std::array<char, 256> block{};
      const std::size_t count = input_.Read(block.data(), block.size());
      if (count == 0) {
        return std::nullopt;
      }
      read_.append(block.data(), count);
      end = read_.find('\n');
    }
    std::string line = read_.substr(0, end);
    read_.erase(0, end + 1);
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    return line;
  }

 private:
  InputStream input_ = InputStream::Standard();
  std::string read_;
};

struct Choice {
  Phrase word;
  std::int32_t answer;
};
/// The two buttons of a question; the second one gives up.
using Choices = std::array<Choice, 2>;

Choices ChoicesOf(std::int32_t buttons) {
  switch (buttons) {
    case KIV_BUTTONS_OK_CANCEL:
      return {{{{"ok", "ok"}, KIV_ANSWER_OK}, {{"cancel", "anulez"}, KIV_ANSWER_CANCEL}}};
    case KIV_BUTTONS_YES_NO:
      return {{{{"yes", "da"}, KIV_ANSWER_YES}, {{"no", "nu"}, KIV_ANSWER_NO}}};
    default:
      return {{{{"retry", "repet"}, KIV_ANSWER_RETRY}, {{"cancel", "anulez"}, KIV_ANSWER_CANCEL}}};
  }
}

/// The dialogs of a copy on the terminal.
class TerminalDialogs {
 public:
  std::int32_t Ask(std::int32_t kind, const std::string& text, std::int32_t buttons) {
    std::string shown = text;
    std::erase(shown, '\r');
    WriteError(shown);
    copied_ = kind == KIV_DIALOG_INFORMATION && buttons == KIV_BUTTONS_OK;
    return buttons == KIV_BUTTONS_OK ? KIV_ANSWER_OK : Choose(ChoicesOf(buttons));
  }

  /// Whether the last of them said that all is copied.
  [[nodiscard]] bool Copied() const noexcept { return copied_; }

 private:
  std::int32_t Choose(const Choices& choices) {
    for (;;) {
      WriteError(Say({"[{0} or {1}]", "[{0} sau {1}]"}, choices[0].word, choices[1].word));
      const std::optional<std::string> line = answers_.Next();
      if (!line) {
        return choices[1].answer;
      }
      std::string typed = *line;
      std::ranges::transform(typed, typed.begin(), kiv::ascii::ToLower<char>);
      for (const auto& [phrase, answer] : choices) {
        const std::string word = Say(phrase).Text();
        if (!typed.empty() && (typed == word || typed == word.substr(0, 1))) {
          return answer;
        }
      }
    }
  }

  Answers answers_;
  bool copied_ = false;
};

bool IsFolder(std::string_view destination) {
  return destination.ends_with('/') || destination.ends_with('\\') || destination == "A:" || destination == "a:";
}

/// Where each file goes. Two of one name would end in one place.
std::vector<std::filesystem::path> DestinationsOf(std::span<const std::filesystem::path> sources,
                                                  const std::string& given) {
  if (sources.size() == 1 && !IsFolder(given)) {
    return {PathFromUtf8(given)};
  }
  const bool separated = given.ends_with('/') || given.ends_with('\\');
  std::vector<std::filesystem::path> destinations;
  std::set<std::filesystem::path> names;
  for (const std::filesystem::path& source : sources) {
    const std::string name = Utf8FromPath(source.filename());
    if (!names.insert(source.filename()).second) {
      throw InputError(Say({"two of the files are called {0}", "două dintre fișiere se numesc {0}"}, Shown(name)));
    }
    destinations.push_back(PathFromUtf8(given + (separated ? "" : "/") + name).make_preferred());
  }
  return destinations;
}

int State(Session& session) {
  const std::int32_t state = session.Lib().FloppyState();
  const bool ready = state == KIV_FLOPPY_READY;
  session.out.Write(ready ? "ready\n" : state == KIV_FLOPPY_UNREADABLE ? "unreadable\n" : "no diskette\n");
  return ready ? kDone : kCheckSaidNo;
}

int Copy(Session& session, std::span<const std::string> values) {
  if (values.size() < 2) {
    throw InputError(Say({"copy takes SRC... DST", "copy cere SRC... DST"}));
  }
  std::vector<std::filesystem::path> sources;
  for (const std::string& source : values.first(values.size() - 1)) {
    sources.push_back(PathFromUtf8(source));
  }
  TerminalDialogs dialogs;
  session.Lib().CopyToFloppy(sources, DestinationsOf(sources, values.back()),
                             [&](std::int32_t kind, const std::string& text, std::int32_t buttons) {
                               return dialogs.Ask(kind, text, buttons);
                             });
  return dialogs.Copied() ? kDone : kCheckSaidNo;
}

constexpr std::array<std::string_view, 2> kActions = {"state", "copy"};

int RunFloppy(Session& session, const Arguments& arguments) {
  const std::string& action = arguments.Values().front();
  const auto rest = std::span(arguments.Values()).subspan(1);
  if (std::ranges::find(kActions, action) == kActions.end()) {
    throw InputError(Say({"{0} is neither state nor copy", "{0} nu este nici state, nici copy"}, Shown(action)));
  }
  if (action == "state" && !rest.empty()) {
    throw InputError(Say({"state takes no files", "state nu primește fișiere"}));
  }
  if (const auto root = arguments.ValueOf("root")) {
    session.Lib().SetFloppyRoot(PathFromUtf8(*root));
  }
  return action == "state" ? State(session) : Copy(session, rest);
}

constexpr Command kCommand = {"floppy",
                              {"Copy files onto a diskette", "Copiază fișiere pe o dischetă"},
                              "state | copy SRC... DST",
                              1,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunFloppy,
                              false,
                              kActions};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
