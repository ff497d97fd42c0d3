#include <algorithm>
#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/DataFile.h"
#include "apps/kivtools/DataShow.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/commands/DataActions.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array<std::string_view, 2> kEncodings = {"utf-8", "windows-1250"};
constexpr std::array<Option, 16> kOptions = {{
    {"columns", "LIST", {"show: only these fields, \"name,total\"", "show: numai aceste câmpuri, \"nume,total\""}},
    {"encoding",
     "NAME",
     {"a .csv is \"utf-8\" or \"windows-1250\"", "un .csv este \"utf-8\" sau \"windows-1250\""},
     kEncodings},
    {"filter",
     "COND",
     {"show: only the rows that pass, \"total > 100\"", "show: numai rândurile care trec, \"total > 100\""}},
    {"for-spreadsheet",
     "",
     {"convert: texts of a .csv that look like formulas get \"'\" in front",
      "convert: textele unui .csv care seamănă a formule primesc \"'\" în față"}},
    {"json", "", {"for machines: an object for the file", "pentru programe: un obiect pentru fișier"}},
    {"key",
     "FIELDS",
     {"diff: the fields that tell rows apart, with commas",
      "diff: câmpurile după care se recunosc rândurile, cu virgule"}},
    {"limit", "N", {"show: at most so many rows", "show: cel mult atâtea rânduri"}},
    {"mark",
     "",
     {"convert: the .csv is written with the mark by which spreadsheets know UTF-8",
      "convert: fișierul .csv se scrie cu semnul după care programele de calcul recunosc UTF-8"}},
    {"original", "", {"show: the rows as they were before all changes", "show: rândurile dinaintea modificărilor"}},
    {"out", "DELTA", {"diff: the file to write, also -o DELTA", "diff: fișierul de scris, și -o DELTA"}},
    {"romanian", "", {"numbers of a .csv are as 1.234,56", "numerele unui .csv sunt ca 1.234,56"}},
    {"separator",
     "C",
     {"what stands between values of a .csv, or \"tab\"", "ce stă între valorile unui .csv, sau \"tab\""}},
    {"sort", "LIST", {"show: in this order, \"name, total desc\"", "show: în această ordine, \"nume, total desc\""}},
    {"sum",
     "LIST",
     {"show: what these fields of all rows that pass come to",
      "show: cât fac aceste câmpuri la toate rândurile care trec"}},
    {"table", "NAME", {"the name of the rows of a .csv", "numele rândurilor unui .csv"}},
    {"types",
     "LIST",
     {"what columns of a .csv hold, as NAME:TYPE,...; the others are found out",
      "ce țin coloanele unui .csv, ca NUME:TIP,...; celelalte se află singure"}},
}};

constexpr Phrase kDetails = {
    "FILE is what applications save of a dataset, or a delta that they send: FILE.kdp. A journal beside it,\n"
    "FILE.kdp.log, is read with it. Or it is of another program: FILE.xml, FILE.csv.\n\n"
    "  show      the rows, \"*\" before changed and \"+\" before new ones\n"
    "  changes   each row that is not as it was when it was loaded: was -> is\n"
    "  check     every checksum and rule; the exit code is 1 and the place is told where the file is damaged, or its\n"
    "            journal cut short\n"
    "  convert   the rows into another file, in the form that its ending names\n"
    "  diff      what has changed from one file to another, as a delta\n\n"
    "Types are int16, int32, int64, currency, double, date, time, datetime, text, widetext, boolean, guid, memo, blob\n"
    "and autoinc.\n\n"
    "Examples:\n"
    "  kivtools data show lines.kdp\n"
    "  kivtools data show --sort \"partner, total desc\" --limit 10 lines.kdp\n"
    "  kivtools data show --filter \"total > 100\" --sum total lines.kdp\n"
    "  kivtools data changes --json to-send.kdp\n"
    "  kivtools data check lines.kdp\n"
    "  kivtools data convert --types cont:text bank.csv bank.kdp\n"
    "  kivtools data diff --key cont yesterday.csv today.csv -o change.kdp\n",
    "FILE este ce salvează aplicațiile dintr-un set de date, sau o deltă pe care o trimit: FILE.kdp. Un jurnal\n"
    "alături, FILE.kdp.log, se citește cu el. Sau este al altui program: FILE.xml, FILE.csv.\n\n"
    "  show      rândurile, cu \"*\" înaintea celor modificate și \"+\" înaintea celor noi\n"
    "  changes   fiecare rând care nu mai este cum a fost încărcat: era -> este\n"
    "  check     fiecare sumă de control și regulă; codul de ieșire este 1 și se spune locul unde fișierul este\n"
    "            stricat sau jurnalul lui este retezat\n"
    "  convert   rândurile în alt fișier, în forma pe care o spune terminația lui\n"
    "  diff      ce s-a modificat de la un fișier la altul, ca deltă\n\n"
    "Tipurile sunt int16, int32, int64, currency, double, date, time, datetime, text, widetext, boolean, guid, memo,\n"
    "blob și autoinc.\n\n"
    "Exemple:\n"
    "  kivtools data show lines.kdp\n"
    "  kivtools data show --sort \"partner, total desc\" --limit 10 lines.kdp\n"
    "  kivtools data show --filter \"total > 100\" --sum total lines.kdp\n"
    "  kivtools data changes --json to-send.kdp\n"
    "  kivtools data check lines.kdp\n"
    "  kivtools data convert --types cont:text bank.csv bank.kdp\n"
    "  kivtools data diff --key cont yesterday.csv today.csv -o change.kdp\n"};

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

int RunShow(Session& session, const Arguments& arguments) {
  return ShowData(session, arguments.Values()[1], arguments);
}

int RunChanges(Session& session, const Arguments& arguments) {
  const DataFile file(session.Lib(), PathFromUtf8(arguments.Values()[1]));
  (arguments.Has("json") ? ShowChangesAsJson : ShowChanges)(session.out, file);
  return kDone;
}

/// Where a file is damaged, for machines.
std::string PlaceOf(const DamagedFile& damaged) {
  if (damaged.line != 0) {
    return "\"line\": " + std::to_string(damaged.line) + ", \"column\": " + std::to_string(damaged.column);
  }
  return "\"chunk\": " + std::to_string(damaged.chunk) + ", \"offset\": " + std::to_string(damaged.offset);
}

int RunCheck(Session& session, const Arguments& arguments) {
  const std::string& name = arguments.Values()[1];
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
        json ? beginning + "false, " + PlaceOf(damaged) + ", \"message\": " + JsonString(damaged.what()) + "}\n"
             : Say({"{0}: damaged; {1}\n", "{0}: stricat; {1}\n"}, ShownName(name), damaged.what()).Text());
    return kCheckSaidNo;
  }
}

constexpr std::array<std::string_view, 1> kJson = {"json"};
constexpr std::array<std::string_view, 7> kShowOptions = {"columns",  "filter", "json", "limit",
                                                          "original", "sort",   "sum"};
const std::array<DataAction, 5> kActions = {{{"show", 2, kShowOptions, RunShow},
                                             {"changes", 2, kJson, RunChanges},
                                             {"check", 2, kJson, RunCheck},
                                             kDataConvert,
                                             kDataDiff}};
constexpr std::array<std::string_view, 5> kActionNames = {"show", "changes", "check", "convert", "diff"};

void CheckArguments(const DataAction& action, const Arguments& arguments) {
  if (arguments.Values().size() != action.values) {
    throw InputError(action.values == 2 ? Say({"{0} takes one file", "{0} primește un fișier"}, action.name)
                                        : Say({"{0} takes two files", "{0} primește două fișiere"}, action.name));
  }
  for (const Option& option : kOptions) {
    if (arguments.Has(option.name) && std::ranges::find(action.options, option.name) == action.options.end()) {
      throw InputError(Say({"--{0} is not for {1}", "--{0} nu este pentru {1}"}, option.name, action.name));
    }
  }
}

int RunData(Session& session, const Arguments& arguments) {
  const std::string& action = arguments.Values().front();
  const auto* const found = std::ranges::find(kActions, action, &DataAction::name);
  if (found == kActions.end()) {
    throw InputError(Say(
        {"{0} is none of show, changes, check, convert, diff", "{0} nu este show, changes, check, convert sau diff"},
        Shown(action)));
  }
  CheckArguments(*found, arguments);
  // Says why a file cannot be read in the system's words, and never waits for the writer of a pipe.
  InputStream::Open(PathFromUtf8(arguments.Values()[1]), InputStream::What::File);
  return found->run(session, arguments);
}

constexpr Command kCommand = {"data",
                              {"Show, check, convert and compare the datasets that applications save",
                               "Arată, verifică, convertește și compară seturile de date salvate de aplicații"},
                              "ACTION FILE [OUT]",
                              2,
                              3,
                              kOptions,
                              kDetails,
                              RunData,
                              false,
                              kActionNames};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
