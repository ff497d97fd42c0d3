#include <algorithm>
#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/DataFile.h"
#include "apps/kivtools/DataShow.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 6> kOptions = {
    {{"columns", "LIST", {"show: only these fields, \"name,total\"", "show: numai aceste câmpuri, \"nume,total\""}},
     {"filter",
      "COND",
      {"show: only the rows that pass, \"total > 100\"", "show: numai rândurile care trec, \"total > 100\""}},
     {"json", "", {"for machines: an object for the file", "pentru programe: un obiect pentru fișier"}},
     {"limit", "N", {"show: at most so many rows", "show: cel mult atâtea rânduri"}},
     {"original", "", {"show: the rows as they were before all changes", "show: rândurile dinaintea modificărilor"}},
     {"sort", "LIST", {"show: in this order, \"name, total desc\"", "show: în această ordine, \"nume, total desc\""}}}};

constexpr Phrase kDetails = {
    "FILE.kdp is what applications save of a dataset, or a delta that they send. A journal beside it,\n"
    "FILE.kdp.log, is read with it.\n\n"
    "  show      the rows, \"*\" before changed and \"+\" before new ones\n"
    "  changes   each row that is not as it was when it was loaded: was -> is\n"
    "  check     every checksum and rule; the exit code is 1 and the place is told where the file is damaged, or its\n"
    "            journal cut short\n\n"
    "Examples:\n"
    "  kivtools data show lines.kdp\n"
    "  kivtools data show --sort \"partner, total desc\" --limit 10 lines.kdp\n"
    "  kivtools data changes --json to-send.kdp\n"
    "  kivtools data check lines.kdp\n",
    "FILE.kdp este ce salvează aplicațiile dintr-un set de date, sau o deltă pe care o trimit. Un jurnal alături,\n"
    "FILE.kdp.log, se citește cu el.\n\n"
    "  show      rândurile, cu \"*\" înaintea celor modificate și \"+\" înaintea celor noi\n"
    "  changes   fiecare rând care nu mai este cum a fost încărcat: era -> este\n"
    "  check     fiecare sumă de control și regulă; codul de ieșire este 1 și se spune locul unde fișierul este\n"
    "            stricat sau jurnalul lui este retezat\n\n"
    "Exemple:\n"
    "  kivtools data show lines.kdp\n"
    "  kivtools data show --sort \"partner, total desc\" --limit 10 lines.kdp\n"
    "  kivtools data changes --json to-send.kdp\n"
    "  kivtools data check lines.kdp\n"};

constexpr std::array<std::string_view, 3> kKinds = {"inserted", "modified", "deleted"};

/// What a person reads for kKinds.
constexpr std::array<Phrase, 3> kRowWas = {{{"inserted", "adăugat"}, {"modified", "modificat"}, {"deleted", "șters"}}};
/// Which row it is. Example: "linii id=17".
std::string KeyOf(const DataFile& file, const DataFile::Change& change) {
  std::string key = ShownName(file.Name());
  for (const DataFile::Change::Value& value : change.values) {
    if (const DataFile::Field& field = file.Fields()[value.field]; field.isKey) {
      key += " " + field.name + "=" + ForPeople(change.kind == KIV_CHANGE_INSERT ? value.is : value.was);
    }
  }
  return key;
}

void ShowChanges(Output& out, const DataFile& file) {
  std::uint64_t count = 0;
  file.ForEachChange([&](const DataFile::Change& change) {
    std::string shown = KeyOf(file, change) + "  " + Say(kRowWas.at(static_cast<std::size_t>(change.kind))).Text();
    for (const DataFile::Change::Value& value : change.values) {
      const DataFile::Field& field = file.Fields()[value.field];
      if (value.isChanged && !(field.isKey && change.kind == KIV_CHANGE_INSERT)) {
        shown += "\n  " + field.name + ": " +
                 (change.kind == KIV_CHANGE_UPDATE ? ForPeople(value.was) + " -> " : std::string()) +
                 ForPeople(value.is);
      }
    }
    out.Write(shown + "\n");
    ++count;
  });
  out.Write(Say({"{0} changed\n", "{0} modificat\n"},
                Counted(count, {{"row has", "rând s-a"}, {"rows have", "rânduri s-au"}})));
}

void ShowChangesAsJson(Output& out, const DataFile& file) {
  out.Write("{\"name\": " + JsonString(file.Name()) + ", \"changes\": [");
  std::string separator = "\n  ";
  file.ForEachChange([&](const DataFile::Change& change) {
    std::string shown = separator + "{\"kind\": " + JsonString(kKinds.at(static_cast<std::size_t>(change.kind)));
    for (const DataFile::Change::Value& value : change.values) {
      shown += ", " + JsonString(file.Fields()[value.field].name) + ": {";
      shown += change.kind == KIV_CHANGE_INSERT ? "" : "\"was\": " + ForMachines(value.was);
      shown += change.kind == KIV_CHANGE_UPDATE ? ", " : "";
      shown += change.kind == KIV_CHANGE_DELETE ? "" : "\"is\": " + ForMachines(value.is);
      shown += "}";
    }
    out.Write(shown + "}");
    separator = ",\n  ";
  });
  out.Write("]}\n");
}

int RunChanges(Session& session, const std::string& name, const Arguments& arguments) {
  const DataFile file(session.Lib(), PathFromUtf8(name));
  (arguments.Has("json") ? ShowChangesAsJson : ShowChanges)(session.out, file);
  return kDone;
}

int RunCheck(Session& session, const std::string& name, const Arguments& arguments) {
  const bool json = arguments.Has("json");
  const std::string beginning = "{\"file\": " + JsonString(name) + ", \"whole\": ";
  try {
    const DataFile file(session.Lib(), PathFromUtf8(name));
    const bool isWhole = file.LostBytes() == 0;
    session.out.Write(
        json ? beginning + (isWhole ? "true" : "false") + ", \"replayed\": " + std::to_string(file.Replayed()) +
                   ", \"lost\": " + std::to_string(file.LostBytes()) + "}\n"
             : ShownName(name) + ": " + (isWhole ? Say({"whole; ", "întreg; "}).Text() : "") + Summary(file) + "\n");
    return isWhole ? kDone : kCheckSaidNo;
  } catch (const DamagedFile& damaged) {
    session.out.Write(
        json ? beginning + "false, \"chunk\": " + std::to_string(damaged.chunk) + ", \"offset\": " +
                   std::to_string(damaged.offset) + ", \"message\": " + JsonString(damaged.what()) + "}\n"
             : Say({"{0}: damaged; {1}\n", "{0}: stricat; {1}\n"}, ShownName(name), damaged.what()).Text());
    return kCheckSaidNo;
  }
}

struct Action {
  std::string_view name;
  int (*run)(Session& session, const std::string& name, const Arguments& arguments);
};
constexpr std::array<Action, 3> kActions = {{{"show", ShowData}, {"changes", RunChanges}, {"check", RunCheck}}};
constexpr auto kActionNames = [] {
  std::array<std::string_view, kActions.size()> names;
  std::ranges::transform(kActions, names.begin(), &Action::name);
  return names;
}();

int RunData(Session& session, const Arguments& arguments) {
  const std::string& action = arguments.Values().front();
  const std::string& file = arguments.Values().back();
  const auto* const found = std::ranges::find(kActions, action, &Action::name);
  if (found == kActions.end()) {
    throw InputError(
        Say({"{0} is none of show, changes, check", "{0} nu este show, changes sau check"}, Shown(action)));
  }
  for (const Option& option : kOptions) {
    if (option.name != "json" && action != "show" && arguments.Has(option.name)) {
      throw InputError(Say({"--{0} is for show", "--{0} este pentru show"}, option.name));
    }
  }
  // Says why a file cannot be read in the system's words, and never waits for the writer of a pipe.
  InputStream::Open(PathFromUtf8(file), InputStream::What::File);
  return found->run(session, file, arguments);
}

constexpr Command kCommand = {
    "data",
    {"Show and check the datasets that applications save", "Arată și verifică seturile de date salvate de aplicații"},
    "ACTION FILE.kdp",
    2,
    2,
    kOptions,
    kDetails,
    RunData,
    false,
    kActionNames};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
