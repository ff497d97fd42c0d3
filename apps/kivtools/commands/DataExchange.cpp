// "kivtools data convert" and "data diff": files of data from one form into another, and what has changed in them.
#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "apps/kivtools/DataFile.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/commands/DataActions.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

struct TypeName {
  std::string_view name;
  std::int32_t type;
};
constexpr std::array<TypeName, 15> kTypes = {{{"int16", KIV_FIELD_INT16},
                                              {"int32", KIV_FIELD_INT32},
                                              {"int64", KIV_FIELD_INT64},
                                              {"currency", KIV_FIELD_CURRENCY},
                                              {"double", KIV_FIELD_DOUBLE},
                                              {"date", KIV_FIELD_DATE},
                                              {"time", KIV_FIELD_TIME},
                                              {"datetime", KIV_FIELD_DATE_TIME},
                                              {"text", KIV_FIELD_TEXT},
                                              {"widetext", KIV_FIELD_WIDE_TEXT},
                                              {"boolean", KIV_FIELD_BOOLEAN},
                                              {"guid", KIV_FIELD_GUID},
                                              {"memo", KIV_FIELD_MEMO},
                                              {"blob", KIV_FIELD_BLOB},
                                              {"autoinc", KIV_FIELD_AUTO_INC}}};

constexpr Noun kRows = {{"row", "rând"}, {"rows", "rânduri"}};

/// Takes the part before the first separator off the front. Example: "a,b" gives "a" and leaves "b".
std::string_view TakePart(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

std::int32_t TypeOf(std::string_view name) {
  const auto* const found = std::ranges::find(kTypes, name, &TypeName::name);
  if (found == kTypes.end()) {
    std::string names;
    for (const TypeName& type : kTypes) {
      names += (names.empty() ? "" : ", ") + std::string(type.name);
    }
    throw InputError(Say({"{0} is none of the types {1}", "{0} nu este un tip dintre {1}"}, Shown(name), names));
  }
  return found->type;
}

std::int32_t SeparatorOf(const std::string& given) {
  if (given == "tab") {
    return '\t';
  }
  if (given.size() != 1 || static_cast<unsigned char>(given[0]) <= ' ' || static_cast<unsigned char>(given[0]) > 0x7E) {
    throw InputError(Say({"--separator is one character or the word tab, not {0}",
                          "--separator este un caracter sau cuvântul tab, nu {0}"},
                         Shown(given)));
  }
  return given[0];
}

std::int32_t EncodingOf(const std::optional<std::string>& given) {
  if (given && *given != "utf-8" && *given != "windows-1250") {
    throw InputError(
        Say({"--encoding is utf-8 or windows-1250, not {0}", "--encoding este utf-8 sau windows-1250, nu {0}"},
            Shown(*given)));
  }
  return !given ? 0 : *given == "utf-8" ? KIV_CSV_UTF8 : KIV_CSV_WINDOWS1250;
}

/// What the options say of texts, read or written.
DataForm FormOf(const Arguments& arguments) {
  DataForm form;
  const std::string types = arguments.ValueOf("types").value_or("");
  for (std::string_view rest = types; !rest.empty();) {
    std::string_view column = TakePart(rest, ',');
    const std::string name(TakePart(column, ':'));
    form.columns.push_back({name, TypeOf(column)});
  }
  form.name = arguments.ValueOf("table").value_or("");
  if (const auto separator = arguments.ValueOf("separator")) {
    form.separator = SeparatorOf(*separator);
  }
  form.csv = EncodingOf(arguments.ValueOf("encoding")) | (arguments.Has("romanian") ? KIV_CSV_ROMANIAN : 0) |
             (arguments.Has("mark") ? KIV_CSV_MARK : 0) |
             (arguments.Has("for-spreadsheet") ? KIV_CSV_FOR_SPREADSHEET : 0);
  return form;
}

/// A text has no type or name of its own; what else could be one is told.
DataFile Load(Session& session, const std::string& name, const DataForm& form) {
  const std::filesystem::path path = PathFromUtf8(name);
  // Says why a file cannot be read in the system's words, and never waits for the writer of a pipe.
  InputStream::Open(path, InputStream::What::File);
  if (FormatOf(path) != DataFormat::Csv && (!form.columns.empty() || !form.name.empty())) {
    throw InputError(Say({"--types and --table are for files .csv, and {0} is none",
                          "--types și --table sunt pentru fișiere .csv, iar {0} nu este unul"},
                         ShownName(name)));
  }
  DataFile file(session.Lib(), path, form);
  if (file.IsDelta()) {
    throw InputError(
        Say({"{0} is a delta, which has no rows of its own", "{0} este o deltă, care nu are rânduri proprii"},
            ShownName(name)));
  }
  return file;
}

int RunConvert(Session& session, const Arguments& arguments) {
  const DataForm form = FormOf(arguments);
  const std::string& out = arguments.Values()[2];
  if (!FormatNamed(PathFromUtf8(out))) {
    throw InputError(Say({"{0} is not called .kdp, .xml or .csv, which says in what form to write it",
                          "{0} nu se termină în .kdp, .xml sau .csv, ceea ce spune în ce formă să fie scris"},
                         ShownName(out)));
  }
  const DataFile file = Load(session, arguments.Values()[1], form);
  file.Save(PathFromUtf8(out), form);
  const std::size_t rows =
      file.CountOf(KIV_ROW_UNMODIFIED) + file.CountOf(KIV_ROW_INSERTED) + file.CountOf(KIV_ROW_MODIFIED);
  session.out.Write(ShownName(out) + ": " + Counted(rows, kRows).Text() + "\n");
  return kDone;
}

/// What a column is in two files of which at least one is a text, whose types were found out from its values alone: the
/// type of a file that knows it, of the text that has values at all, or the narrowest that holds both.
std::int32_t CommonType(const DataFile& before, std::size_t field, const DataFile& after, std::size_t other) {
  const std::int32_t left = before.Fields()[field].type;
  const std::int32_t right = after.Fields()[other].type;
  if (!before.IsText() || !after.IsText()) {
    return before.IsText() ? right : left;
  }
  if (!before.HasValues(field) || !after.HasValues(other)) {
    return before.HasValues(field) ? left : right;
  }
  const auto either = [&](std::int32_t type) { return left == type || right == type; };
  return either(KIV_FIELD_WIDE_TEXT)                             ? KIV_FIELD_WIDE_TEXT
         : either(KIV_FIELD_INT64) && either(KIV_FIELD_CURRENCY) ? KIV_FIELD_CURRENCY
                                                                 : KIV_FIELD_TEXT;
}

/// The columns of texts that are of another type in the other file, and what they are to be read as.
std::vector<DataForm::Column> DifferingColumns(const DataFile& before, const DataFile& after) {
  std::vector<DataForm::Column> columns;
  for (std::size_t i = 0; i < before.Fields().size(); ++i) {
    const DataFile::Field& field = before.Fields()[i];
    if (const auto other = after.FindField(field.name); other && after.Fields()[*other].type != field.type) {
      columns.push_back({field.name, CommonType(before, i, after, *other)});
    }
  }
  return columns;
}

int RunDiff(Session& session, const Arguments& arguments) {
  const std::optional<std::string> out = arguments.ValueOf("out");
  if (!out) {
    throw InputError(Say({"diff needs -o DELTA, the file to write", "diff cere -o DELTA, fișierul de scris"}));
  }
  std::vector<std::string> key;
  const std::string fields = arguments.ValueOf("key").value_or("");
  for (std::string_view rest = fields; !rest.empty();) {
    key.emplace_back(TakePart(rest, ','));
  }
  DataForm form = FormOf(arguments);
  std::optional<DataFile> before(Load(session, arguments.Values()[1], form));
  std::optional<DataFile> after(Load(session, arguments.Values()[2], form));
  if (const auto columns = DifferingColumns(*before, *after); !columns.empty()) {
    form.columns.insert(form.columns.end(), columns.begin(), columns.end());
    for (const auto& [file, name] :
         {std::pair(&before, &arguments.Values()[1]), std::pair(&after, &arguments.Values()[2])}) {
      if ((*file)->IsText()) {
        file->emplace(session.Lib(), PathFromUtf8(*name), form);
      }
    }
  }
  const std::size_t rows = before->SaveDifference(*after, key, PathFromUtf8(*out));
  session.out.Write(Say({"{0}: {1} changed\n", "{0}: {1} modificat\n"}, ShownName(*out),
                        Counted(rows, {{"row has", "rând s-a"}, {"rows have", "rânduri s-au"}})));
  return kDone;
}

constexpr std::array<std::string_view, 7> kDiffOptions = {"key",       "out",      "types",   "table",
                                                          "separator", "romanian", "encoding"};
constexpr std::array<std::string_view, 7> kConvertOptions = {"types",    "table", "separator",      "romanian",
                                                             "encoding", "mark",  "for-spreadsheet"};

}  // namespace

constinit const DataAction kDataConvert = {"convert", 3, kConvertOptions, RunConvert};

constinit const DataAction kDataDiff = {"diff", 3, kDiffOptions, RunDiff};

}  // namespace kivtools
