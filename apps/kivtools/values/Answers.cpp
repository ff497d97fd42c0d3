#include "apps/kivtools/values/Answers.h"

#include <algorithm>
#include <array>

#include "apps/kivtools/Json.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/input/Bytes.h"
#include "apps/kivtools/input/Lines.h"

namespace kivtools {
namespace {

Said NoField(std::size_t place) {
  return Say({"there is no field {0}", "câmpul {0} lipsește"}, place + 1);
}

void AppendField(std::string_view field, char separator, TextBuffer& out) {
  if (!HasAny(field, separator, '"', '\n', '\r')) {
    out += field;
    return;
  }
  out += '"';
  for (const char character : field) {
    out += std::string_view("\"\"").substr(0, character == '"' ? 1 : 0);
    out += character;
  }
  out += '"';
}

constexpr bool IsLineEnd(char character) noexcept {
  return character == '\n' || character == '\r';
}

}  // namespace

ValueCounts& ValueCounts::operator+=(const ValueCounts& other) noexcept {
  answered += other.answered;
  invalid += other.invalid;
  blank += other.blank;
  tooShort += other.tooShort;
  return *this;
}

void Answers::Clear() noexcept {
  text_.Cut(0);
  lines_.clear();
  counts_ = {};
}

void Answers::Print(Output& out, std::uint64_t firstLine) const {
  const std::string_view text = text_.View();
  std::size_t printed = 0;
  for (const auto& [place, line] : lines_) {
    out.Write(text.substr(printed, place - printed));
    out.Write(std::to_string(firstLine - 1 + line));
    printed = place;
  }
  out.Write(text.substr(printed));
}

void AppendWithFields(std::string_view record, std::size_t gap, char separator,
                      std::span<const std::string_view> fields, TextBuffer& out) {
  std::size_t end = record.size();
  for (const char ending : {'\n', '\r'}) {
    end -= end > 0 && record[end - 1] == ending ? 1 : 0;
  }
  out += record.substr(0, end);
  for (std::size_t i = 0; i < gap; ++i) {
    out += separator;
  }
  for (const std::string_view field : fields) {
    out += separator;
    AppendField(field, separator, out);
  }
  out += record.substr(end);
}

Answerer::Answerer(const ValueWork& work, const ValueRules& rules, bool json, std::string_view file)
    : work_(work),
      rules_(rules),
      json_(json),
      beforeLine_(Say({"\tline ", "\trândul "})),
      fileMember_(file.empty() ? "" : "\"file\": " + JsonString(file) + ", ") {}

void Answerer::BeginReason(std::uint64_t line, Answers& answers) const {
  answers.text_ += beforeLine_;
  answers.lines_.push_back({answers.text_.Size(), line});
  answers.text_ += ": ";
}

/// Takes back what was appended where it is not to be seen.
template <class Append>
void Answerer::Answer(std::uint64_t line, Answers& answers, const Append& append) const {
  const std::size_t size = answers.text_.Size();
  const std::size_t lines = answers.lines_.size();
  const auto takeBack = [&] {
    answers.text_.Cut(size);
    answers.lines_.resize(lines, {});
  };
  bool valid = true;
  try {
    valid = append();
  } catch (const InputError& error) {
    takeBack();
    if (line == 0) {
      throw;
    }
    throw LineError(line, AsItIs(error.what()));
  } catch (...) {
    takeBack();
    throw;
  }
  ++answers.counts_.answered;
  answers.counts_.invalid += valid ? 0 : 1;
  if (valid && rules_.invalidOnly) {
    takeBack();
  }
}

void Answerer::BeginObject(std::optional<std::string_view> value, std::optional<std::uint64_t> line,
                           Answers& answers) const {
  answers.text_ += "{";
  answers.text_ += fileMember_;
  if (line) {
    answers.text_ += "\"line\": ";
    answers.lines_.push_back({answers.text_.Size(), *line});
    answers.text_ += ", ";
  }
  answers.text_ += "\"value\": ";
  answers.text_ += value ? JsonString(*value) : "null";
}

void Answerer::Typed(std::string_view value, Answers& answers) const {
  Answer(0, answers, [&] {
    if (!json_) {
      return work_.AppendLines(value, answers.text_);
    }
    BeginObject(value, std::nullopt, answers);
    const bool valid = work_.AppendMembers(value, answers.text_);
    answers.text_ += "}\n";
    return valid;
  });
}

void Answerer::OnLine(std::string_view value, std::uint64_t line, Answers& answers) const {
  if (IsNothing(value)) {
    Blank(line, answers);
    return;
  }
  Answer(line, answers, [&] {
    bool valid = true;
    if (json_) {
      BeginObject(value, line, answers);
      valid = work_.AppendMembers(value, answers.text_);
      answers.text_ += '}';
    } else if (rules_.isCheck) {
      valid = work_.AppendLine(value, answers.text_);
      if (!valid) {
        BeginReason(line, answers);
        work_.AppendReason(value, answers.text_);
      }
    } else {
      answers.answer_.Cut(0);
      valid = work_.AppendLine(value, answers.answer_);
      // A field may hold line ends.
      answers.text_.AppendChanged(answers.answer_.View(), [](char byte) { return IsLineEnd(byte) ? ' ' : byte; });
    }
    answers.text_ += '\n';
    return valid;
  });
}

void Answerer::Blank(std::uint64_t line, Answers& answers) const {
  ++answers.counts_.blank;
  if (rules_.isCheck) {
    return;
  }
  if (json_) {
    BeginObject("", line, answers);
    answers.text_ += '}';
  }
  answers.text_ += '\n';  // so that answers and values stand on the same lines
}

void Answerer::Copied(std::string_view record, Answers& answers) const {
  ++answers.counts_.blank;
  answers.text_ += rules_.invalidOnly ? std::string_view() : record;
}

void Answerer::TooShort(std::size_t field, std::uint64_t line, Answers& answers) const {
  const Said fault = NoField(field);
  if (!rules_.isCheck) {
    throw LineError(line, fault);
  }
  ++answers.counts_.tooShort;
  Answer(line, answers, [&] {
    if (json_) {
      BeginObject(std::nullopt, line, answers);
      answers.text_ += ", \"valid\": false, \"reason\": " + JsonString(fault.Text()) + "}\n";
    } else {
      work_.AppendLine("", answers.text_);
      BeginReason(line, answers);
      answers.text_ += fault.Text() + "\n";
    }
    return false;
  });
}

void Answerer::AppendReason(const Record& record, std::optional<std::string_view> value, TextBuffer& out) const {
  if (value) {
    work_.AppendReason(*value, out);
  } else {
    out += NoField(record.place);
  }
}

void Answerer::Added(const Record& record, std::optional<std::string_view> value, Answers& answers) const {
  if (record.fields > record.width) {
    throw LineError(record.line, Say({"more fields than the first row has", "mai multe câmpuri decât primul rând"}));
  }
  if (!value && !rules_.isCheck) {
    throw LineError(record.line, NoField(record.place));
  }
  answers.counts_.tooShort += value ? 0 : 1;
  // A short row gets the fields that it lacks, so that the answer stands below its heading.
  Answer(record.line, answers, [&] {
    answers.answer_.Cut(0);
    answers.reason_.Cut(0);
    const bool valid = IsNothing(value.value_or("")) || work_.AppendAnswer(value.value_or(""), answers.answer_);
    if (rules_.reasons && !valid) {
      AppendReason(record, value, answers.reason_);
    }
    const std::array<std::string_view, 2> fields = {answers.answer_.View(), answers.reason_.View()};
    AppendWithFields(record.raw, record.width - record.fields, record.separator,
                     std::span(fields).first(rules_.reasons ? 2 : 1), answers.text_);
    return valid;
  });
}

}  // namespace kivtools
