#include "apps/kivtools/input/Csv.h"

#include <algorithm>
#include <cstring>

namespace kivtools {
namespace {

/// The first `wanted` at or behind `from`, the end where there is none.
std::size_t Find(std::string_view text, char wanted, std::size_t from) noexcept {
  const void* const found = from < text.size() ? std::memchr(text.data() + from, wanted, text.size() - from) : nullptr;
  return found == nullptr ? text.size() : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

/// What separates the fields of a file that begins with this record.
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

}  // namespace

bool CsvReader::Next() {
  reader_.Consume(recordBytes_);
  line_ += recordLines_;
  if (separator_ == '\0') {
    Start();
  }
  recordBytes_ = FindRecord();
  if (recordBytes_ == 0) {
    return false;
  }
  std::span<char> record = reader_.Window().first(recordBytes_);
  for (const char end : {'\n', '\r'}) {
    if (!record.empty() && record.back() == end) {
      record = record.first(record.size() - 1);
    }
  }
  const std::string_view text(record.data(), record.size());
  if (separator_ == '\0') {
    separator_ = SeparatorOf(text);
  }
  fields_.clear();
  if (hasQuotes_) {
    SplitQuoted(record);
  } else {
    Split(text);
  }
  return true;
}

void CsvReader::Start() {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  while (reader_.Window().size() < kByteOrderMark.size() && reader_.ReadMore()) {
  }
  const std::span<char> window = reader_.Window();
  if (std::string_view(window.data(), window.size()).starts_with(kByteOrderMark)) {
    reader_.Consume(kByteOrderMark.size());
  }
}

std::size_t CsvReader::FindRecord() {
  // A line end within quotes has an odd number of them before it.
  std::size_t scanned = 0;
  std::ptrdiff_t quotes = 0;
  recordLines_ = 0;
  for (;;) {
    const std::span<char> bytes = reader_.Window();
    const std::string_view window(bytes.data(), bytes.size());
    const std::size_t newline = Find(window, '\n', scanned);
    const std::size_t stop = std::min(newline + 1, window.size());
    quotes += std::count(window.begin() + static_cast<std::ptrdiff_t>(scanned),
                         window.begin() + static_cast<std::ptrdiff_t>(stop), '"');
    hasQuotes_ = quotes > 0;
    scanned = stop;
    if (newline < window.size()) {
      ++recordLines_;
      if (quotes % 2 == 0) {
        return scanned;
      }
    } else if (scanned <= kLongestRecord && !reader_.ReadMore()) {
      return scanned;
    }
    if (scanned > kLongestRecord) {
      throw CsvError(line_, "a record of more than 16 MiB; does a quote lack its end?");
    }
  }
}

void CsvReader::Split(std::string_view record) {
  for (std::size_t at = 0;;) {
    const std::size_t end = Find(record, separator_, at);
    fields_.push_back(record.substr(at, end - at));
    if (end == record.size()) {
      return;
    }
    at = end + 1;
  }
}

void CsvReader::SplitQuoted(std::span<char> record) {
  const std::string_view text(record.data(), record.size());
  const auto fail = [this](const char* what) {
    throw CsvError(line_, "field " + std::to_string(fields_.size() + 1) + ": " + what);
  };
  for (std::size_t at = 0;; ++at) {
    std::string_view field;
    if (at < text.size() && text[at] == '"') {
      field = TakeQuoted(record, at);
      if (at < text.size() && text[at] != separator_) {
        fail("text behind the closing quote");
      }
    } else {
      const std::size_t end = Find(text, separator_, at);
      field = text.substr(at, end - at);
      if (Find(field, '"', 0) != field.size()) {
        fail("a quote inside a field that is not quoted");
      }
      at = end;
    }
    fields_.push_back(field);
    if (at >= text.size()) {
      return;
    }
  }
}

/// Unquotes the field at `at` in place, which only makes it shorter, and leaves `at` behind its closing quote.
std::string_view CsvReader::TakeQuoted(std::span<char> record, std::size_t& at) {
  const std::string_view text(record.data(), record.size());
  const std::size_t start = ++at;
  std::size_t written = start;
  for (;;) {
    const std::size_t quote = Find(text, '"', at);
    if (quote == text.size()) {
      throw CsvError(line_, "field " + std::to_string(fields_.size() + 1) + ": the closing quote is missing");
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

}  // namespace kivtools
