#include "apps/kivtools/DataShow.h"

#include <algorithm>
#include <array>

#include "apps/kivtools/Json.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array<std::string_view, 4> kStates = {"unmodified", "inserted", "modified", "deleted"};
constexpr std::array<std::string_view, 4> kMarks = {"  ", "+ ", "* ", "- "};
constexpr std::array<Phrase, 3> kRowsWere = {
    {{"inserted", "adăugate"}, {"modified", "modificate"}, {"deleted", "șterse"}}};

/// The columns of a table whose widths the first rows decide; what is wider later sticks out.
class Table {
 public:
  Table(Output& out, const DataFile& file, const std::vector<std::size_t>& fields) : out_(out) {
    std::vector<std::string> names;
    for (const std::size_t place : fields) {
      const DataFile::Field& field = file.Fields()[place];
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

/// What is to be added up, and what it comes to.
struct Summed {
  std::vector<std::size_t> fields;
  DataFile::Totals totals;
};

void ShowSums(Output& out, const DataFile& file, const Summed& summed) {
  std::string sums;
  for (std::size_t i = 0; i < summed.fields.size(); ++i) {
    sums += (i == 0 ? "" : ", ") + file.Fields()[summed.fields[i]].name + " " + ForPeople(summed.totals.sums[i]);
  }
  out.Write(Say({"total of {0}: {1}\n", "total pe {0}: {1}\n"},
                Counted(summed.totals.rows, {{"row", "rând"}, {"rows", "rânduri"}}), sums));
}

void ShowRows(Output& out, const DataFile& file, const DataFile::Wanted& wanted, const std::string& summary) {
  out.Write(summary + "\n");
  Table table(out, file, wanted.fields);
  const std::uint64_t left =
      file.ForEachRow(wanted, [&](std::int32_t state, const std::vector<DataFile::Shown>& values) {
        std::vector<std::string> cells(values.size());
        std::ranges::transform(values, cells.begin(), ForPeople);
        table.Add(kMarks.at(static_cast<std::size_t>(state)), std::move(cells));
      });
  table.Flush();
  if (left > 0) {
    out.Write(Say({"... and {0} more\n", "... și încă {0}\n"}, Counted(left, {{"row", "rând"}, {"rows", "rânduri"}})));
  }
}

void ShowRowsAsJson(Output& out, const DataFile& file, const DataFile::Wanted& wanted,
                    const std::optional<Summed>& summed) {
  out.Write("{\"name\": " + JsonString(file.Name()) + ", \"rows\": [");
  std::string separator = "\n  ";
  file.ForEachRow(wanted, [&](std::int32_t state, const std::vector<DataFile::Shown>& values) {
    std::string row = separator + "{\"state\": " + JsonString(kStates.at(static_cast<std::size_t>(state)));
    row += ", \"values\": {";
    for (std::size_t i = 0; i < values.size(); ++i) {
      row += (i == 0 ? "" : ", ") + JsonString(file.Fields()[wanted.fields[i]].name) + ": " + ForMachines(values[i]);
    }
    out.Write(row + "}}");
    separator = ",\n  ";
  });
  std::string end = "]";
  if (summed) {
    end += ", \"count\": " + std::to_string(summed->totals.rows) + ", \"sum\": {";
    for (std::size_t i = 0; i < summed->fields.size(); ++i) {
      end += (i == 0 ? "" : ", ") + JsonString(file.Fields()[summed->fields[i]].name) + ": " +
             ForMachines(summed->totals.sums[i]);
    }
    end += "}";
  }
  out.Write(end + "}\n");
}

/// The places of the fields of a list "name,total"; of all where it is not given.
std::vector<std::size_t> FieldsOf(const DataFile& file, const std::optional<std::string>& list) {
  std::vector<std::size_t> fields;
  for (std::size_t i = 0; !list && i < file.Fields().size(); ++i) {
    fields.push_back(i);
  }
  for (std::size_t begin = 0; list && begin <= list->size();) {
    const std::size_t end = std::min(list->find(',', begin), list->size());
    std::string name = list->substr(begin, end - begin);
    name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
    name.erase(name.find_last_not_of(' ') + 1);
    const std::optional<std::size_t> found = file.FindField(name);
    if (!found) {
      throw InputError(
          Say({"{0} is no field of {1}", "{0} nu este un câmp din {1}"}, Shown(name), ShownName(file.Name())));
    }
    fields.push_back(*found);
    begin = end + 1;
  }
  return fields;
}

}  // namespace

std::string ForPeople(const DataFile::Shown& value) {
  return value ? ShownName(*value) : "null";
}

std::string ForMachines(const DataFile::Shown& value) {
  return value ? JsonString(*value) : "null";
}

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

int ShowData(Session& session, const std::string& name, const Arguments& arguments) {
  DataFile file(session.Lib(), PathFromUtf8(name));
  if (file.IsDelta()) {
    throw InputError(Say(
        {"{0} is a delta; \"kivtools data changes\" shows it", "{0} este o deltă; o arată \"kivtools data changes\""},
        ShownName(name)));
  }
  DataFile::Wanted wanted{.filter = arguments.ValueOf("filter").value_or(""),
                          .order = arguments.ValueOf("sort").value_or(""),
                          .fields = FieldsOf(file, arguments.ValueOf("columns"))};
  if (const auto limit = arguments.ValueOf("limit")) {
    wanted.most = static_cast<std::uint64_t>(ReadWholeNumber(*limit, 0, std::numeric_limits<std::int32_t>::max(),
                                                             {"a number of rows", "un număr de rânduri"}));
  }
  const std::string summary = Summary(file);
  if (arguments.Has("original")) {
    file.TakeBackChanges();
  }
  std::optional<Summed> summed;
  if (const auto sum = arguments.ValueOf("sum")) {
    summed = Summed{FieldsOf(file, sum), {}};
    summed->totals = file.SumUp(wanted.filter, summed->fields);
  }
  if (arguments.Has("json")) {
    ShowRowsAsJson(session.out, file, wanted, summed);
    return kDone;
  }
  ShowRows(session.out, file, wanted, summary);
  if (summed) {
    ShowSums(session.out, file, *summed);
  }
  return kDone;
}

}  // namespace kivtools
