#include <algorithm>
#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/DataFile.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {
    {{"json", "", {"for machines: an object for the file", "pentru programe: un obiect pentru fișier"}}}};

constexpr Phrase kDetails = {
    "FILE.kdp is what applications save of a dataset, or a delta that they send. A journal beside it,\n"
    "FILE.kdp.log, is read with it.\n\n"
    "  show      the rows, \"*\" before changed and \"+\" before new ones\n"
    "  changes   each row that is not as it was when it was loaded: was -> is\n"
    "  check     every checksum and rule; the exit code is 1 and the place is told where the file is damaged, or its\n"
    "            journal cut short\n\n"
    "Examples:\n"
    "  kivtools data show lines.kdp\n"
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
    "  kivtools data changes --json to-send.kdp\n"
    "  kivtools data check lines.kdp\n"};

constexpr std::array<std::string_view, 4> kStates = {"unmodified", "inserted", "modified", "deleted"};
constexpr std::array<std::string_view, 4> kMarks = {"  ", "+ ", "* ", "- "};
constexpr std::array<std::string_view, 3> kKinds = {"inserted", "modified", "deleted"};

std::string ForPeople(const DataFile::Shown& value) {
  return value ? ShownName(*value) : "null";
}

std::string ForMachines(const DataFile::Shown& value) {
  return value ? JsonString(*value) : "null";
}

/// What a person reads for kKinds, of one row and of several.
constexpr std::array<Phrase, 3> kRowWas = {{{"inserted", "adăugat"}, {"modified", "modificat"}, {"deleted", "șters"}}};
constexpr std::array<Phrase, 3> kRowsWere = {
    {{"inserted", "adăugate"}, {"modified", "modificate"}, {"deleted", "șterse"}}};

/// What the file is, in one line. Example: "linii: 3 rows (1 inserted), 4 changes in the log".
std::string Summary(const DataFile& file) {
  if (file.IsDelta()) {
    return ShownName(file.Name()) + ": " + Say({"a delta", "o deltă"}).Text();
  }
  const std::size_t rows =
      file.CountOf(KIV_ROW_UNMODIFIED) + file.CountOf(KIV_ROW_INSERTED) + file.CountOf(KIV_ROW_MODIFIED);
  std::string summary = ShownName(file.Name()) + ": " + Counted(rows, {{"row", "rând"}, {"rows", "rânduri"}}).Text();
  std::string separator = " (";
  for (std::int32_t state = KIV_ROW_INSERTED; state <= KIV_ROW_DELETED; ++state) {
    if (const std::size_t count = file.CountOf(state); count > 0) {
      summary += separator;
      summary += Say({"{0} {1}", "{1}: {0}"}, count, kRowsWere.at(static_cast<std::size_t>(state) - 1));
      separator = ", ";
    }
  }
  summary += separator == ", " ? ")" : "";
  summary += Say({", {0} in the log", ", {0} în istoric"},
                 Counted(file.LogLength(), {{"change", "modificare"}, {"changes", "modificări"}}));
  if (file.Replayed() > 0) {
    summary += Say({", {0} from the journal", ", {0} din jurnal"},
                   Counted(file.Replayed(), {{"edit", "operație"}, {"edits", "operații"}}));
  }
  if (file.LostBytes() > 0) {
    summary += Say({", {0} of the journal lost", ", {0} din jurnal pierduți"}, Counted(file.LostBytes(), kBytes));
  }
  return summary;
}

/// The columns of a table whose widths the first rows decide; what is wider later sticks out.
class Table {
 public:
  Table(Output& out, const DataFile& file) : out_(out) {
    std::vector<std::string> names;
    for (const DataFile::Field& field : file.Fields()) {
      names.push_back(field.name);
      isNumber_.push_back(field.type <= KIV_FIELD_DOUBLE || field.type == KIV_FIELD_AUTO_INC);
    }
    Add("  ", std::move(names));
  }

  void Add(std::string_view mark, std::vector<std::string> cells) {
    waiting_.emplace_back(mark, std::move(cells));
    if (!widths_.empty() || waiting_.size() > kRowsThatDecide) {
      Flush();
    }
  }

  void Flush() {
    if (widths_.empty()) {
      widths_.resize(isNumber_.size());
      for (const auto& row : waiting_) {
        for (std::size_t i = 0; i < row.second.size(); ++i) {
          widths_[i] = std::max(widths_[i], DisplayWidth(row.second[i]));
        }
      }
    }
    for (const auto& row : waiting_) {
      std::string line(row.first);
      for (std::size_t i = 0; i < row.second.size(); ++i) {
        line += (i == 0 ? "" : "  ") + (isNumber_[i] ? PadStart : PadEnd)(row.second[i], widths_[i]);
      }
      line.erase(line.find_last_not_of(' ') + 1);
      out_.Write(line + "\n");
    }
    waiting_.clear();
  }

 private:
  static constexpr std::size_t kRowsThatDecide = 1000;
  Output& out_;
  std::vector<bool> isNumber_;
  std::vector<std::size_t> widths_;
  std::vector<std::pair<std::string_view, std::vector<std::string>>> waiting_;
};

void ShowRows(Output& out, const DataFile& file) {
  out.Write(Summary(file) + "\n");
  Table table(out, file);
  file.ForEachRow([&](std::int32_t state, const std::vector<DataFile::Shown>& values) {
    std::vector<std::string> cells(values.size());
    std::ranges::transform(values, cells.begin(), ForPeople);
    table.Add(kMarks.at(static_cast<std::size_t>(state)), std::move(cells));
  });
  table.Flush();
}

void ShowRowsAsJson(Output& out, const DataFile& file) {
  out.Write("{\"name\": " + JsonString(file.Name()) + ", \"rows\": [");
  std::string separator = "\n  ";
  file.ForEachRow([&](std::int32_t state, const std::vector<DataFile::Shown>& values) {
    std::string row = separator + "{\"state\": " + JsonString(kStates.at(static_cast<std::size_t>(state)));
    row += ", \"values\": {";
    for (std::size_t i = 0; i < values.size(); ++i) {
      row += (i == 0 ? "" : ", ") + JsonString(file.Fields()[i].name) + ": " + ForMachines(values[i]);
    }
    out.Write(row + "}}");
    separator = ",\n  ";
  });
  out.Write("]}\n");
}

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

int RunShow(Session& session, const std::string& name, bool json) {
  const DataFile file(session.Lib(), PathFromUtf8(name));
  if (file.IsDelta()) {
    throw InputError(Say(
        {"{0} is a delta; \"kivtools data changes\" shows it", "{0} este o deltă; o arată \"kivtools data changes\""},
        ShownName(name)));
  }
  (json ? ShowRowsAsJson : ShowRows)(session.out, file);
  return kDone;
}

int RunChanges(Session& session, const std::string& name, bool json) {
  const DataFile file(session.Lib(), PathFromUtf8(name));
  (json ? ShowChangesAsJson : ShowChanges)(session.out, file);
  return kDone;
}

int RunCheck(Session& session, const std::string& name, bool json) {
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
  int (*run)(Session&, const std::string&, bool);
};
constexpr std::array<Action, 3> kActions = {{{"show", RunShow}, {"changes", RunChanges}, {"check", RunCheck}}};
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
  // Says why a file cannot be read in the system's words, and never waits for the writer of a pipe.
  InputStream::Open(PathFromUtf8(file), InputStream::What::File);
  return found->run(session, file, arguments.Has("json"));
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
