#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "apps/kivtools/Json.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Csv.h"
#include "apps/kivtools/input/ForEachBlock.h"
#include "apps/kivtools/input/Input.h"
#include "apps/kivtools/input/Lines.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/values/Answers.h"
#include "apps/kivtools/values/ValueWork.h"
#include "kivtools/Ascii.h"

namespace kivtools {

bool ValueWork::AppendLines(std::string_view value, TextBuffer& out) const {
  const bool valid = AppendLine(value, out);
  out += '\n';
  return valid;
}

bool ValueWork::AppendMembers(std::string_view value, TextBuffer& out) const {
  TextBuffer answer;
  const bool valid = AppendAnswer(value, answer);
  out += ", " + JsonString(member_) + ": " + JsonString(answer.View());
  return valid;
}

namespace {

/// Prints answers and keeps count.
class Report {
 public:
  Report(Output& out, const ValueRules& rules) : out_(out), rules_(rules) {}

  /// The answers to a part of the input that begins on that line.
  void Take(const Answers& answers, std::uint64_t line = 1) {
    counts_ += answers.Counts();
    answers.Print(out_, line);
    out_.Flush();  // a person who types waits for it
  }
  void Write(std::string_view text) { out_.Write(text); }

  void Summarise() const {
    if (!rules_.isCheck) {
      return;
    }
    std::string summary =
        Say({"{0} checked, {1} invalid", "verificate: {0}, nevalide: {1}"}, counts_.answered, counts_.invalid).Text();
    if (counts_.blank > 0) {
      summary += Say({", {0} blank", ", goale: {0}"}, counts_.blank);
    }
    if (counts_.tooShort > 0) {
      summary += Say({", {0} too short", ", prea scurte: {0}"}, counts_.tooShort);
    }
    WriteError(summary);
  }
  [[nodiscard]] bool HasAny() const noexcept { return counts_.answered + counts_.blank > 0; }
  [[nodiscard]] int Result() const noexcept {
    return counts_.tooShort > 0 ? kBadInput : counts_.invalid > 0 ? kCheckSaidNo : kDone;
  }

 private:
  Output& out_;
  const ValueRules& rules_;
  ValueCounts counts_;
};

bool IsBlank(std::string_view text) noexcept {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

bool IsNumber(std::string_view text) noexcept {
  return std::ranges::all_of(text, kiv::ascii::IsDigit<char>);
}

/// Which field of the records is asked for.
struct Column {
  char separator;
  std::size_t place;                   ///< from 0
  std::size_t width = 0;               ///< the fields of the first record
  std::optional<std::string> heading;  ///< the first record, with its line end, where the column has a name
};

/// A name is in the first record, which is then taken away.
Column FindColumn(BlockReader& reader, const std::string& column, std::span<const std::string> added) {
  constexpr std::int32_t kMost = 1'000'000;
  const std::string first(reader.PeekFirst());
  Column found{SeparatorOf(first), 0, 0, std::nullopt};
  const bool byNumber = IsNumber(column);
  if (byNumber) {
    found.place = static_cast<std::size_t>(
                      ReadWholeNumber(column, 1, kMost, {"the number of a column", "numărul unei coloane"})) -
                  1;
    if (added.empty()) {
      return found;
    }
  }
  std::string heading = first;
  CsvRecords records(heading, found.separator, reader.FirstLine());
  const auto& fields = records.Fields();
  found.width = records.Next() ? fields.size() : 0;
  if (byNumber) {
    return found;
  }
  const auto at = std::ranges::find(fields, column);
  if (at == fields.end()) {
    throw InputError(Say({"{0} is not in the first row", "{0} nu este în primul rând"}, Shown(column)));
  }
  for (const std::string& name : added) {
    if (std::ranges::find(fields, name) != fields.end()) {
      const std::string_view option = &name == &added.front() ? kAdd : kReasons;
      throw InputError(Say({"--{0} {1}: the file has such a column", "--{0} {1}: fișierul are deja o asemenea coloană"},
                           option, Shown(name)));
    }
  }
  if (fields.size() == 1 && added.empty()) {
    found.separator = '\n';  // none has been seen: a comma is a part of the value
  }
  found.place = static_cast<std::size_t>(at - fields.begin());
  found.heading = first;
  reader.DropFirst();
  return found;
}

std::uint64_t AnswerColumn(const Answerer& answerer, const Column& column, std::span<char> text, Answers& answers) {
  CsvRecords records(text, column.separator);
  while (records.Next()) {
    const auto& fields = records.Fields();
    if (fields.size() == 1 && IsBlank(fields.front())) {
      answerer.Blank(records.Line(), answers);
    } else if (column.place < fields.size()) {
      answerer.OnLine(fields[column.place], records.Line(), answers);
    } else {
      answerer.TooShort(column.place, records.Line(), answers);
    }
  }
  return records.NextLine() - 1;
}

/// The same, with the records copied.
std::uint64_t AddColumn(const Answerer& answerer, const Column& column, std::span<char> text, Answers& answers) {
  // Splitting unquotes in place, so that records with quotes are copied from elsewhere.
  std::string_view original(text.data(), text.size());
  std::unique_ptr<char[]> kept;
  if (FindByte(original, '"') < original.size()) {
    kept = std::make_unique_for_overwrite<char[]>(text.size());
    std::ranges::copy(text, kept.get());
    original = {kept.get(), text.size()};
  }
  CsvRecords records(text, column.separator);
  for (std::size_t left = text.size(); records.Next(); left = records.BytesLeft()) {
    const auto& fields = records.Fields();
    const std::string_view raw = original.substr(text.size() - left, left - records.BytesLeft());
    if (fields.size() == 1 && IsBlank(fields.front())) {
      answerer.Copied(raw, answers);
      continue;
    }
    answerer.Added({raw, fields.size(), column.width, column.place, column.separator, records.Line()},
                   column.place < fields.size() ? std::optional(fields[column.place]) : std::nullopt, answers);
  }
  return records.NextLine() - 1;
}

/// What the options say.
struct Form {
  std::optional<std::string> column;
  std::vector<std::string> added;  ///< the names of the columns of a copy
  bool files;
  bool json;
};

void AnswerCsv(const Answerer& answerer, ByteSource source, const Form& form, Report& report) {
  BlockReader reader(std::move(source), RecordKind::Csv);
  const Column column = FindColumn(reader, *form.column, form.added);
  if (!form.added.empty()) {
    TextBuffer begin;
    begin += reader.HadByteOrderMark() ? "\xEF\xBB\xBF" : "";
    if (column.heading) {
      const std::vector<std::string_view> names(form.added.begin(), form.added.end());
      AppendWithFields(*column.heading, 0, column.separator, names, begin);
    }
    report.Write(begin.View());
  }
  const auto work = form.added.empty() ? AnswerColumn : AddColumn;
  ForEachBlock<Answers>(
      reader,
      [&](std::span<char> text, Answers& answers) {
        answers.Clear();
        return work(answerer, column, text, answers);
      },
      [&](const Answers& answers, std::uint64_t line) { report.Take(answers, line); });
}

void AnswerLines(const Answerer& answerer, ByteSource source, Report& report) {
  BlockReader reader(std::move(source), RecordKind::Line);
  ForEachBlock<Answers>(
      reader,
      [&](std::span<char> text, Answers& answers) {
        answers.Clear();
        std::uint64_t number = 0;
        return ForEachLine({text.data(), text.size()}, [&](std::string_view line) {
          ++number;
          if (IsBlank(line)) {
            answerer.Blank(number, answers);
          } else {
            answerer.OnLine(line, number, answers);
          }
        });
      },
      [&](const Answers& answers, std::uint64_t line) { report.Take(answers, line); });
}

void AnswerFile(const std::string& name, const ValueWork& work, const ValueRules& rules, const Form& form,
                Report& report) {
  const Answerer answerer(work, rules, form.json, name == "-" ? "" : name);
  Input input(name);
  try {
    if (form.column) {
      AnswerCsv(answerer, input.Source(), form, report);
    } else {
      AnswerLines(answerer, input.Source(), report);
    }
  } catch (const LineError& error) {
    if (name == "-") {
      throw;
    }
    throw InputError(AtLine(ShownName(name), error.Line(), error.what()));
  }
}

/// Whatever ends the work early, what was found before it is told.
void AnswerFiles(std::span<const std::string> names, const ValueWork& work, const ValueRules& rules, const Form& form,
                 Report& report) {
  try {
    for (const std::string& name : names) {
      AnswerFile(name, work, rules, form, report);
    }
  } catch (const OutputError&) {
    throw;
  } catch (...) {
    if (report.HasAny()) {
      report.Summarise();
    }
    throw;
  }
  report.Summarise();
}

bool IsFile(const std::string& value) {
  std::error_code unknown;
  return std::filesystem::is_regular_file(PathFromUtf8(value), unknown);
}

/// A value that is none but names a file was probably meant as one.
void AnswerTyped(const Session& session, std::span<const std::string> values, const ValueWork& work,
                 const ValueRules& rules, const Form& form, Report& report) {
  const Answerer answerer(work, rules, form.json);
  for (const std::string& value : values) {
    Answers answers;
    report.Write(rules.inParagraphs && !form.json && &value != &values.front() ? "\n" : "");
    try {
      answerer.Typed(value, answers);
    } catch (const InputError& error) {
      throw InputError(IsFile(value) ? Say({"{0}; it is a file, which --files reads",
                                            "{0}; este un fișier, pe care îl citește --files"},
                                           error.what())
                                     : AsItIs(error.what()));
    }
    report.Take(answers);
    if (answers.Counts().invalid > 0 && IsFile(value)) {
      session.Report(
          Say({"{0} is a file, which --files reads", "{0} este un fișier, pe care îl citește --files"}, Shown(value)));
    }
  }
}

Form ReadForm(const Arguments& arguments) {
  Form form{arguments.ValueOf("csv"), {}, arguments.Has("files"), arguments.Has("json")};
  for (const std::string_view option : {kAdd, kReasons}) {
    if (auto name = arguments.ValueOf(option)) {
      form.added.push_back(*std::move(name));
    }
  }
  if (arguments.Has(kReasons) && !arguments.Has(kAdd)) {
    throw InputError(Say({"\"--reasons\" goes with --add only", "\"--reasons\" merge numai cu --add"}));
  }
  if (form.added.size() == 2 && form.added.front() == form.added.back()) {
    throw InputError(
        Say({"{0} cannot name both columns", "{0} nu poate numi amândouă coloanele"}, Shown(form.added.front())));
  }
  if (!form.added.empty() && !form.column) {
    throw InputError(Say({"\"--add\" goes with --csv only", "\"--add\" merge numai cu --csv"}));
  }
  if (!form.added.empty() && form.json) {
    throw InputError(Say({"\"--json\" does not go with --add", "\"--json\" nu merge cu --add"}));
  }
  return form;
}

}  // namespace

int AnswerValues(Session& session, const Arguments& arguments, std::span<const std::string> values,
                 const ValueWork& work, const ValueRules& rules) {
  const Form form = ReadForm(arguments);
  const bool ofFiles = form.column || form.files;
  if (!ofFiles && values.empty() && !rules.isCheck) {
    throw InputError(IsMissing(rules.what));
  }
  if (!form.added.empty() && values.size() > 1) {
    throw InputError(Say({"{0}: --add copies one FILE only", "{0}: --add copiază un singur FILE"}, Shown(values[1])));
  }
  if (!ofFiles && values.size() > 1 && std::ranges::find(values, "-") != values.end()) {
    throw InputError(Say({"\"-\" goes with no other {0}", "\"-\" nu merge cu alt {0}"}, rules.what));
  }
  static const std::string kStandardInput = "-";
  Report report(session.out, rules);
  if (ofFiles || values.empty() || values.front() == kStandardInput) {
    AnswerFiles(values.empty() ? std::span(&kStandardInput, 1) : values, work, rules, form, report);
  } else {
    AnswerTyped(session, values, work, rules, form, report);
  }
  return report.Result();
}

}  // namespace kivtools
