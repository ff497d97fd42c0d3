#include "apps/kivtools/input/Csv.h"

#include <algorithm>
#include <cstring>

#include "apps/kivtools/input/Lines.h"

namespace kivtools {

char SeparatorOf(std::string_view record) noexcept {
  bool quoted = false;
  for (const char character : record) {
    quoted ^= character == '"';
    if (!quoted && (character == ',' || character == ';' || character == '\t')) {
      return character;
    }
  }
  return ',';
}

bool CsvRecords::Next() {
  if (text_.empty()) {
    return false;
  }
  const std::span<char> record = TakeRecord();
  fields_.clear();
  if (hasQuotes_) {
    SplitQuoted(record);
  } else {
    Split({record.data(), record.size()});
  }
  return true;
}

bool CsvRecords::HasQuote(std::span<const char> text) noexcept {
  return FindByte({text.data(), text.size()}, '"') < text.size();
}

/// Takes the record at the front, without its line end.
std::span<char> CsvRecords::TakeRecord() {
  // A line end within quotes has an odd number of them before it.
  const std::string_view text(text_.data(), text_.size());
  std::size_t end = 0;
  std::ptrdiff_t quotes = 0;
  line_ = nextLine_;
  do {
    const std::size_t newline = FindByte(text, '\n', end);
    const std::string_view piece = text.substr(end, newline - end);
    quotes += mayHaveQuotes_ ? std::ranges::count(piece, '"') : 0;
    nextLine_ += newline < text.size() ? 1 : 0;
    end = std::min(newline + 1, text.size());
  } while (quotes % 2 != 0 && end < text.size());
  hasQuotes_ = quotes > 0;
  std::span<char> record = text_.first(end);
  text_ = text_.subspan(end);
  for (const char ending : {'\n', '\r'}) {
    if (!record.empty() && record.back() == ending) {
      record = record.first(record.size() - 1);
    }
  }
  return record;
}

void CsvRecords::Fail(const Phrase& what) const {
  throw LineError(line_, Say({"field {0}: {1}", "câmpul {0}: {1}"}, fields_.size() + 1, what));
}

void CsvRecords::Split(std::string_view record) {
  for (std::size_t at = 0;;) {
    const std::size_t end = FindByte(record, separator_, at);
    fields_.push_back(record.substr(at, end - at));
    if (end == record.size()) {
      return;
    }
    at = end + 1;
  }
}

void CsvRecords::SplitQuoted(std::span<char> record) {
  const std::string_view text(record.data(), record.size());
  for (std::size_t at = 0;; ++at) {
    std::string_view field;
    if (at < text.size() && text[at] == '"') {
      field = TakeQuoted(record, at);
      if (at < text.size() && text[at] != separator_) {
        Fail({"text behind the closing quote", "text după ghilimeaua de încheiere"});
      }
    } else {
      const std::size_t end = FindByte(text, separator_, at);
      field = text.substr(at, end - at);
      if (FindByte(field, '"', 0) != field.size()) {
        Fail({"a quote inside a field that is not quoted", "o ghilimea într-un câmp care nu stă între ghilimele"});
      }
      at = end;
    }
    fields_.push_back(field);
    if (at >= text.size()) {
      return;
    }
  }
}

/// Unquotes the field at `at` in place, which only makes it shorter, and leaves `at` after its closing quote.
std::string_view CsvRecords::TakeQuoted(std::span<char> record, std::size_t& at) {
  const std::string_view text(record.data(), record.size());
  const std::size_t start = ++at;
  std::size_t written = start;
  for (;;) {
    const std::size_t quote = FindByte(text, '"', at);
    if (quote == text.size()) {
      Fail({"the closing quote is missing", "lipsește ghilimeaua de încheiere"});
    }
    std::memmove(record.data() + written, record.data() + at, quote - at);
    written += quote - at;
    at = quote + 1;
    if (at == text.size() || text[at] != '"') {
      return text.substr(start, written - start);
    }
    record[written++] = '"';
    ++at;
  }
}

bool CsvReader::Next() {
  while (!records_.Next()) {
    line_ = records_.NextLine();
    if (!NextBlock()) {
      return false;
    }
  }
  line_ = records_.Line();
  return true;
}

bool CsvReader::NextBlock() {
  try {
    if (separator_ == '\0') {
      separator_ = SeparatorOf(reader_.PeekFirst());
    }
    if (!reader_.Next(block_)) {
      return false;
    }
  } catch (const BlockReader::RecordTooLong& error) {
    throw LineError(records_.NextLine(), AsItIs(error.what()));
  }
  records_ = CsvRecords(block_.Text(), separator_, records_.NextLine());
  return true;
}

}  // namespace kivtools
