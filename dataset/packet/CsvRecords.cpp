#include "dataset/packet/CsvRecords.h"

#include <algorithm>
#include <cstring>

namespace kiv::packet {
namespace {

constexpr std::size_t kBuffer = std::size_t{256} * 1024;
constexpr std::size_t kLongestRecord = std::size_t{1} << 30U;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

}  // namespace

CsvRecords::CsvRecords(const PacketSource& source, const Text& operation)
    : source_(source),
      operation_(operation),
      buffer_(kBuffer + 1),
      begin_(buffer_.data()),
      end_(begin_),
      recordEnd_(begin_) {
  stops_[static_cast<unsigned char>('\n')] = true;
  stops_[static_cast<unsigned char>('"')] = true;
  while (!isAtEnd_ && static_cast<std::size_t>(end_ - begin_) < kMark.size()) {
    Fill();
  }
  const std::string_view front(begin_, static_cast<std::size_t>(end_ - begin_));
  if (front.starts_with("\xFF\xFE") || front.starts_with("\xFE\xFF")) {
    Refuse(0, "textul este UTF-16, nu UTF-8 sau Windows-1250");
  }
  hasMark_ = front.starts_with(kMark);
  if (hasMark_) {
    begin_ += kMark.size();
    place_.offset = kMark.size();
  }
  recordEnd_ = begin_;
}

void CsvRecords::SetSeparator(std::optional<char> separator) {
  separator_ = separator ? static_cast<unsigned char>(*separator) : -1;
  if (separator) {
    stops_[static_cast<unsigned char>(*separator)] = true;
  }
  isSeparatorKnown_ = true;
}

void CsvRecords::Refuse(std::size_t column, TextView why) const {
  RefuseText(operation_, {place_.line, column, place_.offset}, why);
}

/// Moves what is there to the front and adds what the source gives.
void CsvRecords::Fill() {
  const auto kept = static_cast<std::size_t>(end_ - begin_);
  if (kept + 1 >= buffer_.size()) {
    if (buffer_.size() > kLongestRecord) {
      Refuse(0, "randul este prea lung");
    }
    std::vector<char> larger(2 * buffer_.size());
    std::memcpy(larger.data(), begin_, kept);
    buffer_.swap(larger);
  } else {
    std::memmove(buffer_.data(), begin_, kept);
  }
  begin_ = buffer_.data();
  recordEnd_ = begin_;
  const std::size_t count = source_({reinterpret_cast<std::uint8_t*>(begin_) + kept, buffer_.size() - 1 - kept});
  isAtEnd_ = count == 0;
  end_ = begin_ + kept + count;
  *end_ = '\n';
}

bool CsvRecords::Next() {
  place_.offset += static_cast<std::uint64_t>(recordEnd_ - begin_);
  place_.line += lines_;
  lines_ = 0;
  begin_ = recordEnd_;
  for (;;) {
    if (begin_ == end_ && isAtEnd_) {
      return false;
    }
    if (begin_ != end_) {
      if (!isSeparatorKnown_) {
        FindSeparator();
      }
      if (Scan() == Found::Record) {
        isSeparatorKnown_ = true;
        Unquote();
        return true;
      }
    }
    Fill();
  }
}

/// By what there is of the first record; more of it may give another answer only while there is none.
void CsvRecords::FindSeparator() {
  bool isQuoted = false;
  for (const char* at = begin_; at < end_ && (isQuoted || *at != '\n'); ++at) {
    isQuoted ^= *at == '"';
    if (!isQuoted && (*at == ',' || *at == ';' || *at == '\t')) {
      SetSeparator(*at);
      return;
    }
  }
}

/// Takes the values of the record at the front as they stand there.
CsvRecords::Found CsvRecords::Scan() {
  values_.clear();
  doubled_.clear();
  lines_ = 1;
  for (char* at = begin_;; ++at) {
    char* const first = at;
    const bool isQuoted = *at == '"';
    if (isQuoted) {
      at = ScanQuoted(at);
      if (at == nullptr) {
        return Found::CutOff;
      }
      values_.push_back({{first + 1, static_cast<std::size_t>(at - first - 2)}, true});
      at += *at == '\r' && at[1] == '\n' ? 1 : 0;
    } else {
      while (!stops_[static_cast<unsigned char>(*at)]) {
        ++at;
      }
      values_.push_back({{first, static_cast<std::size_t>(at - first)}, false});
    }
    if (*at == '\n') {
      if (at == end_ && !isAtEnd_) {
        return Found::CutOff;
      }
      if (!isQuoted && values_.back().text.ends_with('\r')) {
        values_.back().text.remove_suffix(1);
      }
      recordEnd_ = at == end_ ? at : at + 1;
      return Found::Record;
    }
    if (static_cast<unsigned char>(*at) != separator_) {
      Refuse(values_.size(), isQuoted ? "text dupa ghilimelele de la sfarsit" : "ghilimele in interiorul valorii");
    }
  }
}

/// Goes behind the closing quote; null where it is not there yet.
char* CsvRecords::ScanQuoted(char* from) {
  bool hasDoubled = false;
  char* at = from + 1;
  for (;; at += 2) {
    at = static_cast<char*>(std::memchr(at, '"', static_cast<std::size_t>(end_ - at)));
    if (at == nullptr && isAtEnd_) {
      Refuse(values_.size() + 1, "lipsesc ghilimelele de la sfarsit");
    }
    if (at == nullptr || (at + 1 == end_ && !isAtEnd_)) {
      return nullptr;
    }
    // Behind the last byte stands a line end.
    if (at[1] != '"') {
      break;
    }
    hasDoubled = true;
  }
  if (hasDoubled) {
    doubled_.push_back(values_.size());
  }
  lines_ += static_cast<std::uint64_t>(std::count(from, at, '\n'));
  return at + 1;
}

/// Where values have doubled quotes they get shorter in their place.
void CsvRecords::Unquote() {
  for (const std::size_t number : doubled_) {
    std::string_view& text = values_[number].text;
    char* const first = buffer_.data() + (text.data() - buffer_.data());
    char* out = first;
    for (std::size_t i = 0; i < text.size(); ++i) {
      *out++ = text[i];
      i += text[i] == '"' ? 1 : 0;
    }
    text = {first, static_cast<std::size_t>(out - first)};
  }
}

}  // namespace kiv::packet
