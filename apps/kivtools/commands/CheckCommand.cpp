#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Csv.h"
#include "apps/kivtools/input/LineBlocks.h"
#include "apps/kivtools/system/InputStream.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 3> kOptions = {{
    {"csv", "COLUMN", "check one column, by its name in the first row or its number from 1"},
    {"invalid-only", "", "print only the codes that are not valid"},
    {"ro", "", "take a leading RO off (fiscal codes of VAT payers)"},
}};

constexpr std::string_view kDetails =
    "KIND is iban, cnp, cui or siruta. Every code is printed behind \"valid\" or \"invalid\" and a tabulator. Without "
    "a\n"
    "CODE, or with -, the lines of standard input are checked and counted. With --csv they are records of fields\n"
    "separated by , or ; or tabulators; a column given by its number has no heading.\n\n"
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
  /// Forgets what was; makes room for the verdicts on codes of together so many bytes, line ends included.
  void Clear(std::size_t bytes) {
    const std::size_t most = bytes * (kInvalid.size() + 1) + kInvalid.size();  // a code takes one byte at least
    if (capacity_ < most) {
      capacity_ = most;
      text_ = std::make_unique_for_overwrite<char[]>(capacity_);
    }
    *this = Verdicts(std::move(text_), capacity_);
  }

  void Add(std::string_view code, bool valid, bool print) {
    ++checked_;
    invalid_ += valid ? 0 : 1;
    if (print) {
      const std::string_view verdict = valid ? kValid : kInvalid;
      std::memcpy(text_.get() + size_, verdict.data(), verdict.size());
      std::memcpy(text_.get() + size_ + verdict.size(), code.data(), code.size());
      size_ += verdict.size() + code.size();
      text_[size_++] = '\n';
    }
  }

  [[nodiscard]] std::string_view Text() const noexcept { return {text_.get(), size_}; }
  [[nodiscard]] std::uint64_t Checked() const noexcept { return checked_; }
  [[nodiscard]] std::uint64_t Invalid() const noexcept { return invalid_; }

  Verdicts() = default;

 private:
  static constexpr std::string_view kValid = "valid\t";
  static constexpr std::string_view kInvalid = "invalid\t";

  Verdicts(std::unique_ptr<char[]> text, std::size_t capacity) : text_(std::move(text)), capacity_(capacity) {}

  std::unique_ptr<char[]> text_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
  std::uint64_t checked_ = 0;
  std::uint64_t invalid_ = 0;
};

/// What is asked of each code.
class Question {
 public:
  Question(const Library& library, const Kind& kind, const Arguments& arguments)
      : library_(library),
        predicate_(library.FindPredicate(std::string(kind.operation))),
        invalidOnly_(arguments.Has("invalid-only")),
        dropRo_(arguments.Has("ro")) {}

  /// From any thread.
  void Ask(std::string_view code, Verdicts& verdicts) const {
    const bool hasRo = dropRo_ && code.size() > 2 && (code[0] | 0x20) == 'r' && (code[1] | 0x20) == 'o';
    const bool valid = library_.Ask(predicate_, hasRo ? code.substr(2) : code);
    verdicts.Add(code, valid, !valid || !invalidOnly_);
  }

 private:
  const Library& library_;
  Library::Predicate* predicate_;
  bool invalidOnly_;
  bool dropRo_;
};

/// Prints verdicts and keeps count.
class Report {
 public:
  explicit Report(Output& out) : out_(out) {}

  void Take(const Verdicts& verdicts) {
    out_.Write(verdicts.Text());
    checked_ += verdicts.Checked();
    invalid_ += verdicts.Invalid();
  }
  void Summarise() const {
    out_.Flush();  // so that the count stands behind the codes
    WriteError(std::to_string(checked_) + " checked, " + std::to_string(invalid_) + " invalid");
  }
  [[nodiscard]] int Result() const noexcept { return invalid_ == 0 ? kDone : kCheckSaidNo; }

 private:
  Output& out_;
  std::uint64_t checked_ = 0;
  std::uint64_t invalid_ = 0;
};

/// The place, from 0, of the column that the option names. A name stands in the first record, which is then read.
std::size_t FindColumn(CsvReader& reader, const std::string& column) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(column.data(), column.data() + column.size(), number);
  if (error == std::errc() && end == column.data() + column.size()) {
    if (number == 0) {
      throw InputError(Shown(column) + " is not a column: they are numbered from 1");
    }
    return number - 1;
  }
  if (reader.Next()) {
    const auto& names = reader.Fields();
    const auto found = std::find(names.begin(), names.end(), column);
    if (found != names.end()) {
      return static_cast<std::size_t>(found - names.begin());
    }
  }
  throw InputError(Shown(column) + " is not in the first row");
}

/// A field that holds line ends or tabulators would break the output's lines; nothing valid has them.
std::string OnOneLine(std::string_view field) {
  std::string line(field);
  std::replace_if(
      line.begin(), line.end(), [](char character) { return character >= 0 && character < ' '; }, ' ');
  return line;
}

void CheckColumn(const Question& question, ByteSource source, const std::string& column, Report& report) {
  CsvReader reader(std::move(source));
  Verdicts verdicts;
  try {
    const std::size_t place = FindColumn(reader, column);
    while (reader.Next()) {
      const auto& fields = reader.Fields();
      if (fields.size() == 1 && fields.front().empty()) {
        continue;  // an empty line
      }
      if (place >= fields.size()) {
        throw CsvError(reader.Line(), "there is no field " + std::to_string(place + 1));
      }
      const std::string_view field = fields[place];
      const bool plain = std::none_of(field.begin(), field.end(), [](char byte) { return byte >= 0 && byte < ' '; });
      verdicts.Clear(field.size() + 1);
      question.Ask(plain ? field : OnOneLine(field), verdicts);
      report.Take(verdicts);
    }
  } catch (const CsvError& error) {
    throw InputError("line " + std::to_string(error.Line()) + ": " + error.what());
  }
}

void CheckLines(const Question& question, ByteSource source, Output& out, Report& report) {
  LineBlocks<Verdicts> blocks(std::move(source));
  blocks.Run(
      [&](std::string_view lines, Verdicts& verdicts) {
        verdicts.Clear(lines.size() + 1);
        ForEachLine(lines, [&](std::string_view line) { question.Ask(line, verdicts); });
      },
      [&](const Verdicts& verdicts) {
        report.Take(verdicts);
        out.Flush();
      });
}

int RunCheck(Session& session, const Arguments& arguments) {
  const std::string& name = arguments.Values().front();
  const auto* const kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& known) { return known.name == name; });
  if (kind == kKinds.end()) {
    throw InputError(Shown(name) + " is not a kind of code: iban, cnp, cui or siruta");
  }
  const std::span codes(arguments.Values().begin() + 1, arguments.Values().end());
  const Question question(session.Lib(), *kind, arguments);
  Report report(session.out);
  if (!codes.empty() && codes.front() != "-") {
    if (arguments.Has("csv")) {
      throw InputError(Shown(codes.front()) + ": with --csv the codes come from standard input");
    }
    Verdicts verdicts;
    for (const std::string& code : codes) {
      verdicts.Clear(code.size() + 1);
      question.Ask(code, verdicts);
      report.Take(verdicts);
    }
    return report.Result();
  }
  auto stream = InputStream::Standard();
  Progress progress(stream.Size());
  const ByteSource source = [&](char* into, std::size_t capacity) {
    const std::size_t count = stream.Read(into, capacity);
    progress.Advance(count);
    return count;
  };
  if (const auto column = arguments.ValueOf("csv")) {
    CheckColumn(question, source, *column, report);
  } else {
    CheckLines(question, source, session.out, report);
  }
  report.Summarise();
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
