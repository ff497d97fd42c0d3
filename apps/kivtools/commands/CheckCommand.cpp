#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Command.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"
#include "apps/kivtools/input/Csv.h"
#include "apps/kivtools/input/ForEachBlock.h"
#include "apps/kivtools/input/Input.h"
#include "apps/kivtools/input/Lines.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 3> kOptions = {{
    {"csv", "COLUMN", "check one column, by its name in the first row or its number from 1"},
    {"invalid-only", "", "print only the codes that are not valid"},
    {"ro", "", "take a leading RO off (fiscal codes of VAT payers)"},
}};

constexpr std::string_view kDetails =
    "KIND is iban, cnp, cui or siruta. Blanks in a code are passed over, and single dashes. Every code is printed "
    "after\n"
    "\"valid\" or \"invalid\" and a tab, control characters in it as blanks. Without a CODE, or with - alone, the "
    "lines\n"
    "of standard input are checked and counted; blank lines are only counted. With --csv they are records of fields\n"
    "separated by , or ; or tabs; a column given by its number has no heading. A record that lacks the column is\n"
    "invalid, and its line is told.\n\n"
    "Exit code: 0 all are valid, 1 one is not, 2 bad usage or input.\n\n"
    "Examples:\n"
    "  kivtools check iban \"RO49 AAAA 1B31 0075 9384 0000\"\n"
    "  kivtools check cui --csv cod_fiscal --invalid-only < parteneri.csv\n";

struct Kind {
  std::string_view name;
  std::string_view operation;
};
constexpr std::array<Kind, 4> kKinds = {
    {{"iban", "EsteIBAN"}, {"cnp", "TestCNP"}, {"cui", "TestCodFiscal"}, {"siruta", "ValideazaSIRUTA"}}};

/// The verdicts on some codes, as they are printed, and their number.
class Verdicts {
 public:
  struct Counts {
    std::uint64_t checked = 0;
    std::uint64_t invalid = 0;
    std::uint64_t blank = 0;
    std::uint64_t tooShort = 0;
    std::uint64_t withRo = 0;  ///< not valid, and would be read without their RO
  };
  /// A record without the column: its note goes into the text at this place.
  struct TooShort {
    std::size_t place;
    std::uint64_t line;
  };

  void Clear() noexcept {
    size_ = 0;
    counts_ = {};
    tooShort_.clear();
  }

  void Add(std::string_view code, bool valid, bool print) {
    ++counts_.checked;
    counts_.invalid += valid ? 0 : 1;
    if (print) {
      Append(valid ? "valid\t" : "invalid\t", code);
    }
  }
  void AddTooShort(std::uint64_t line) {
    Add("", false, true);
    ++counts_.tooShort;
    tooShort_.push_back({size_ - 1, line});
  }
  void AddWithRo() noexcept { ++counts_.withRo; }
  void AddBlank() noexcept { ++counts_.blank; }

  [[nodiscard]] std::string_view Text() const noexcept { return {text_.get(), size_}; }
  [[nodiscard]] const Counts& Count() const noexcept { return counts_; }
  [[nodiscard]] const std::vector<TooShort>& TooShortRecords() const noexcept { return tooShort_; }

 private:
  /// Control characters, which might break the output's lines or act on the terminal, become blanks.
  void Append(std::string_view verdict, std::string_view code) {
    const std::size_t wanted = size_ + verdict.size() + code.size() + 1;
    if (capacity_ < wanted) {
      Grow(wanted);
    }
    char* const end = std::ranges::copy(verdict, text_.get() + size_).out;
    *std::ranges::transform(code, end, [](char byte) { return kiv::ascii::IsControl(byte) ? ' ' : byte; }).out = '\n';
    size_ = wanted;
  }

  void Grow(std::size_t wanted) {
    const std::size_t capacity = std::max(wanted, 2 * capacity_);
    auto larger = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy_n(text_.get(), size_, larger.get());
    text_ = std::move(larger);
    capacity_ = capacity;
  }

  std::unique_ptr<char[]> text_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
  Counts counts_;
  std::vector<TooShort> tooShort_;
};

/// What is asked of each code.
class Question {
 public:
  Question(const Library& library, const Kind& kind, const Arguments& arguments)
      : library_(library),
        predicate_(library.FindPredicate(std::string(kind.operation))),
        invalidOnly_(arguments.Has("invalid-only")),
        fiscal_(kind.name == "cui"),
        dropRo_(arguments.Has("ro")) {}

  /// From any thread.
  void Ask(std::string_view code, Verdicts& verdicts) const {
    const bool valid =
        SaysYes([this](std::string_view asked) { return library_.Ask(predicate_, asked); }, code, dropRo_);
    verdicts.Add(code, valid, !valid || !invalidOnly_);
    if (!valid && fiscal_ && !dropRo_ && BeginsWithRo(code)) {
      verdicts.AddWithRo();
    }
  }

 private:
  const Library& library_;
  Library::Predicate* predicate_;
  bool invalidOnly_;
  bool fiscal_;
  bool dropRo_;
};

/// Prints verdicts and keeps count.
class Report {
 public:
  explicit Report(Output& out) : out_(out) {}

  /// The verdicts on a part of the input that begins on that line; `column` is the one that was asked for.
  void Take(const Verdicts& verdicts, std::uint64_t line = 1, std::size_t column = 0) {
    std::size_t printed = 0;
    for (const Verdicts::TooShort& record : verdicts.TooShortRecords()) {
      out_.Write(verdicts.Text().substr(printed, record.place - printed));
      out_.Write("\tline " + std::to_string(line - 1 + record.line) + ": there is no field " +
                 std::to_string(column + 1));
      printed = record.place;
    }
    out_.Write(verdicts.Text().substr(printed));
    counts_.checked += verdicts.Count().checked;
    counts_.invalid += verdicts.Count().invalid;
    counts_.blank += verdicts.Count().blank;
    counts_.tooShort += verdicts.Count().tooShort;
    counts_.withRo += verdicts.Count().withRo;
    out_.Flush();  // a person who types waits for it
  }
  void Summarise() const {
    out_.Flush();  // so that the count comes after the codes
    const auto part = [](std::uint64_t count, const char* what) {
      return count == 0 ? std::string() : ", " + std::to_string(count) + what;
    };
    WriteError(std::to_string(counts_.checked) + " checked, " + std::to_string(counts_.invalid) + " invalid" +
               part(counts_.blank, " blank") + part(counts_.tooShort, " too short"));
  }
  [[nodiscard]] bool HasRo() const noexcept { return counts_.withRo > 0; }
  [[nodiscard]] bool HasAny() const noexcept { return counts_.checked + counts_.blank > 0; }
  [[nodiscard]] int Result() const noexcept {
    return counts_.tooShort > 0 ? kBadInput : counts_.invalid > 0 ? kCheckSaidNo : kDone;
  }

 private:
  Output& out_;
  Verdicts::Counts counts_;
};

bool IsBlank(std::string_view text) noexcept {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

bool IsNumber(std::string_view text) noexcept {
  return std::ranges::all_of(text, kiv::ascii::IsDigit<char>);
}

/// The place, from 0, of the column that the option names. A name is in the first record, which is then taken away.
std::size_t FindColumn(BlockReader& reader, char separator, const std::string& column) {
  constexpr std::int32_t kMost = 1'000'000;
  if (IsNumber(column)) {
    return static_cast<std::size_t>(ReadWholeNumber(column, 1, kMost, "the number of a column")) - 1;
  }
  std::string heading(reader.PeekFirst());
  CsvRecords records(heading, separator);
  if (records.Next()) {
    const auto found = std::ranges::find(records.Fields(), column);
    if (found != records.Fields().end()) {
      reader.DropFirst();
      return static_cast<std::size_t>(found - records.Fields().begin());
    }
  }
  throw InputError(Shown(column) + " is not in the first row");
}

std::uint64_t AskColumn(const Question& question, CsvRecords records, std::size_t place, Verdicts& verdicts) {
  while (records.Next()) {
    const auto& fields = records.Fields();
    if (fields.size() == 1 && IsBlank(fields.front())) {
      verdicts.AddBlank();
    } else if (place < fields.size()) {
      question.Ask(fields[place], verdicts);
    } else {
      verdicts.AddTooShort(records.Line());
    }
  }
  return records.NextLine() - 1;
}

void CheckColumn(const Question& question, ByteSource source, const std::string& column, Report& report) {
  BlockReader reader(std::move(source), RecordKind::Csv);
  const char separator = SeparatorOf(reader.PeekFirst());
  const std::size_t place = FindColumn(reader, separator, column);
  ForEachBlock<Verdicts>(
      reader,
      [&](std::span<char> text, Verdicts& verdicts) {
        verdicts.Clear();
        return AskColumn(question, {text, separator}, place, verdicts);
      },
      [&](const Verdicts& verdicts, std::uint64_t line) { report.Take(verdicts, line, place); });
}

void CheckLines(const Question& question, ByteSource source, Report& report) {
  BlockReader reader(std::move(source), RecordKind::Line);
  ForEachBlock<Verdicts>(
      reader,
      [&](std::span<char> text, Verdicts& verdicts) {
        verdicts.Clear();
        return ForEachLine({text.data(), text.size()}, [&](std::string_view line) {
          if (IsBlank(line)) {
            verdicts.AddBlank();
          } else {
            question.Ask(line, verdicts);
          }
        });
      },
      [&](const Verdicts& verdicts, std::uint64_t /*line*/) { report.Take(verdicts); });
}

/// Whatever ends the check early, what was found before it is told.
void CheckInput(const Question& question, const std::optional<std::string>& column, Report& report) {
  Input input("-");
  try {
    if (column) {
      CheckColumn(question, input.Source(), *column, report);
    } else {
      CheckLines(question, input.Source(), report);
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

void CheckValues(const Question& question, std::span<const std::string> codes, Report& report) {
  Verdicts verdicts;
  for (const std::string& code : codes) {
    question.Ask(code, verdicts);
  }
  report.Take(verdicts);
}

const Kind& FindKind(const std::string& name) {
  const auto* const kind = std::ranges::find(kKinds, name, &Kind::name);
  if (kind == kKinds.end()) {
    std::array<std::string_view, kKinds.size()> names;
    std::ranges::transform(kKinds, names.begin(), &Kind::name);
    throw InputError(Shown(name) + " is not a kind of code: iban, cnp, cui or siruta" + DidYouMean(name, names));
  }
  return *kind;
}

int RunCheck(Session& session, const Arguments& arguments) {
  const Kind& kind = FindKind(arguments.Values().front());
  const std::span codes(arguments.Values().begin() + 1, arguments.Values().end());
  const bool fromInput = codes.empty() || (codes.size() == 1 && codes.front() == "-");
  if (arguments.Has("ro") && kind.name != "cui") {
    throw InputError("\"--ro\" goes with cui only");
  }
  if (!fromInput && arguments.Has("csv")) {
    throw InputError(Shown(codes.front()) + ": with --csv the codes come from standard input");
  }
  if (!fromInput && std::ranges::find(codes, "-") != codes.end()) {
    throw InputError("\"-\" goes with no other CODE");
  }
  const Question question(session.Lib(), kind, arguments);
  Report report(session.out);
  if (fromInput) {
    CheckInput(question, arguments.ValueOf("csv"), report);
  } else {
    CheckValues(question, codes, report);
  }
  if (report.HasRo()) {
    session.Report("codes with RO in front are not valid as they are; --ro takes it off");
  }
  return report.Result();
}

constexpr Command kCommand = {"check",
                              "Check account numbers, personal, fiscal or locality codes",
                              "KIND [CODE ...|-]",
                              1,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunCheck};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
