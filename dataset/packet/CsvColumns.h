#pragma once

#include <algorithm>

#include "dataset/packet/CsvRecords.h"
#include "dataset/packet/ValueText.h"
#include "kivtools/Text.h"

namespace kiv::packet {

/// Which letters a text in UTF-8 has.
enum class Letters : std::uint8_t { Ascii, Windows1250, Others, Malformed };

inline Letters LettersOf(std::string_view utf8) noexcept {
  Letters letters = Letters::Ascii;
  for (std::size_t at = 0; at < utf8.size();) {
    if (static_cast<unsigned char>(utf8[at]) < 0x80) {
      ++at;
      continue;
    }
    const utf8::Decoded decoded = utf8::DecodeAt(utf8, at);
    if (decoded.length == 0) {
      return Letters::Malformed;
    }
    const bool isText = windows1250::FromUnicode(windows1250::CedillaForm(decoded.character)).has_value();
    letters = std::max(letters, isText ? Letters::Windows1250 : Letters::Others);
    at += decoded.length;
  }
  return letters;
}

/// What the values of a column have been so far, and so which type all of them fit.
class ColumnGuess {
 public:
  void Note(const CsvRecords::Value& value, NumberForm form) noexcept {
    if (value.text.empty()) {
      isText_ = isText_ || value.isQuoted;
      return;
    }
    if (!isText_) {
      const auto kind = static_cast<unsigned>(KindOf(value.text, form));
      const bool isDate = kind == kDate;
      isText_ = kind == static_cast<unsigned>(Kind::Text) || (kinds_ != 0 && isDate != (kinds_ == kDate));
      kinds_ |= kind;
    }
    if (isText_) {
      letters_ = std::max(letters_, LettersOf(value.text));
    }
  }
  [[nodiscard]] bool IsUtf8() const noexcept { return letters_ != Letters::Malformed; }
  [[nodiscard]] FieldType Type(bool isUtf8) const noexcept {
    if (isText_ || kinds_ == 0) {
      return isUtf8 && letters_ == Letters::Others ? FieldType::WideText : FieldType::Text;
    }
    return kinds_ == kDate                                  ? FieldType::Date
           : kinds_ == static_cast<unsigned>(Kind::Integer) ? FieldType::Int64
                                                            : FieldType::Currency;
  }

 private:
  static constexpr auto kDate = static_cast<unsigned>(Kind::Date);
  unsigned kinds_ = 0;
  bool isText_ = false;
  Letters letters_ = Letters::Ascii;
};

}  // namespace kiv::packet
